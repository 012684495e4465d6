#pragma once

namespace radiashafts::standin {

// Whether the system lets this process have so few threads that libraries are to be kept from
// asking for some. Found out once.
bool threadsAreScarce();

}  // namespace radiashafts::standin
