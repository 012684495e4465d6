#include "tests/support/failing_memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace radiashafts::test {
namespace {

MemoryFault fault;
std::atomic<int> armed{0};  // number of the fault in force, 0 for none
std::atomic<bool> failed{false};
int lastNumber = 0;
thread_local int asker = 0;  // number of the last fault that this thread asked for
thread_local int counted = 0;
thread_local int allocations = 0;

bool allocationFails() {
  const int number = armed;
  if (number == 0 || (asker == number) == fault.onWorkers) return false;
  if (counted != number) allocations = 0;
  counted = number;
  ++allocations;
  const bool fails = allocations == fault.at || (fault.onward && allocations > fault.at);
  if (fails) failed = true;
  return fails;
}

}  // namespace

FailingMemory::FailingMemory(const MemoryFault& wanted) {
  fault = wanted;
  failed = false;
  asker = ++lastNumber;
  armed = asker;
}

FailingMemory::~FailingMemory() {
  armed = 0;
}

bool FailingMemory::hasFailed() const {
  return failed;
}

}  // namespace radiashafts::test

void* operator new(std::size_t size) {
  void* const block =
      radiashafts::test::allocationFails() ? nullptr : std::malloc(size > 0 ? size : 1);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void operator delete(void* block) noexcept {
  std::free(block);
}

void operator delete(void* block, std::size_t) noexcept {
  std::free(block);
}
