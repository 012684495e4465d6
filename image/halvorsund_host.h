// The services that every image filter uses: memory, progress and threads.
#pragma once

#include <cstdint>
#include <string>

#include "threads/thread_pool.h"

namespace radiashafts {

// Name and version of a filter.
struct FilterIdentity {
  std::string name;
  std::string vendor;
  std::int32_t versionMajor = 0;
  std::int32_t versionMinor = 0;
  std::int32_t versionRevision = 0;
  std::string description;
};

class HalvorsundHost {
 public:
  HalvorsundHost() = default;
  explicit HalvorsundHost(FilterIdentity identity) : identity_(std::move(identity)) {}
  virtual ~HalvorsundHost() = default;
  HalvorsundHost(const HalvorsundHost&) = delete;
  HalvorsundHost& operator=(const HalvorsundHost&) = delete;

  // done out of total; called from any pool thread. A status other than NoErrorCode asks the
  // caller to stop and to hand that status up.
  virtual std::int32_t Progress(std::int32_t done, std::int32_t total, std::int32_t threadIndex);

  // Null, or an exception of the heap, when size bytes are not to be had.
  virtual void* Allocate(std::uint32_t size);
  virtual void Free(void* pointer);

  // Writes the number of threads to use: that of the processors, or the request if it is positive
  // and smaller. With 64 or more processors the request itself is written, even -1. This is
  // intended: the pool clamps it to 1 to 64.
  virtual std::int32_t ThreadCount(std::int32_t* count, std::int32_t requested);

  // Runs the iterations on the pool and returns the calling thread's status. Throws what a callback
  // has thrown, once no thread is in one any more.
  virtual std::int32_t RunIterations(std::int32_t iterations, IterationCallback callback);

  virtual std::int32_t NoErrorCode() const;
  virtual std::int32_t OutOfMemoryCode() const;

  const FilterIdentity& identity() const { return identity_; }

 protected:
  // Separate, so that tests can name any number of processors.
  static std::int32_t threadCountFor(std::int32_t processors, std::int32_t requested);

 private:
  FilterIdentity identity_;
};

}  // namespace radiashafts
