#include "standin/system/huge_pages.h"

namespace radiashafts::standin {

void preferHugePages(void*, std::size_t) {}

}  // namespace radiashafts::standin
