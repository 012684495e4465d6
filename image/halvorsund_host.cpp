#include "image/halvorsund_host.h"

#include <algorithm>
#include <new>

#include "threads/processors.h"

namespace radiashafts {

std::int32_t HalvorsundHost::Progress(std::int32_t, std::int32_t, std::int32_t) {
  return NoErrorCode();
}

void* HalvorsundHost::Allocate(std::uint32_t size) {
  return ::operator new(size);
}

void HalvorsundHost::Free(void* pointer) {
  ::operator delete(pointer);
}

std::int32_t HalvorsundHost::threadCountFor(std::int32_t processors, std::int32_t requested) {
  const std::int32_t count = requested > 0 ? std::min(requested, processors) : processors;
  return count < ThreadPool::maximumSlots ? count : requested;
}

std::int32_t HalvorsundHost::ThreadCount(std::int32_t* count, std::int32_t requested) {
  *count = threadCountFor(processorCount(), requested);
  return NoErrorCode();
}

std::int32_t HalvorsundHost::RunIterations(std::int32_t iterations, IterationCallback callback) {
  std::int32_t count = 1;
  ThreadCount(&count, -1);
  // With 64 or more processors the count is -1: as many as the pool can have.
  ThreadPool& pool = ThreadPool::Instance();
  pool.init(count > 0 ? count : ThreadPool::maximumSlots);
  return pool.iterate(iterations, callback);
}

std::int32_t HalvorsundHost::NoErrorCode() const {
  return 0;
}

std::int32_t HalvorsundHost::OutOfMemoryCode() const {
  return 1;
}

}  // namespace radiashafts
