#pragma once

namespace radiashafts::standin {

// Whether this process can start too few threads for the libraries' pools, which must then be
// disabled. Tested by starting threads on the first call; the result is cached.
bool threadsAreScarce();

}  // namespace radiashafts::standin
