#include "platform/huge_pages.h"

namespace radiashafts::platform {

void preferHugePages(void*, std::size_t) {}

}  // namespace radiashafts::platform
