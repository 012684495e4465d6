#pragma once

#include <cstddef>

namespace radiashafts::standin {

// Asks the system to back a large block with large pages, which are quicker to hand out. Only a
// wish.
void preferHugePages(void* block, std::size_t size);

}  // namespace radiashafts::standin
