#pragma once

#include <cstddef>

namespace radiashafts::standin {

// Advises the system to use huge pages for a large block, which reduces page faults. Errors are
// ignored; does nothing on Windows.
void preferHugePages(void* block, std::size_t size);

}  // namespace radiashafts::standin
