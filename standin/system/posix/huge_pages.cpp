#include "standin/system/huge_pages.h"

#include <cstdint>

#include <sys/mman.h>

namespace radiashafts::standin {

void preferHugePages(void* block, std::size_t size) {
  constexpr std::uintptr_t page = 2U << 20;
  const auto start = reinterpret_cast<std::uintptr_t>(block);
  const std::uintptr_t from = (start + page - 1) / page * page;
  const std::uintptr_t to = (start + size) / page * page;
  if (from < to) madvise(reinterpret_cast<void*>(from), to - from, MADV_HUGEPAGE);
}

}  // namespace radiashafts::standin
