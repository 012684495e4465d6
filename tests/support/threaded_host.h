// Host services with a pool of their own, at a number of threads that the test chooses.
#pragma once

#include <algorithm>
#include <atomic>

#include "image/halvorsund_host.h"

namespace radiashafts::test {

class ThreadedHost : public HalvorsundHost {
 public:
  explicit ThreadedHost(std::int32_t threads) : threads_(threads) { pool_.init(threads); }

  std::int32_t ThreadCount(std::int32_t* count, std::int32_t requested) override {
    *count = requested > 0 ? std::min(requested, threads_) : threads_;
    return NoErrorCode();
  }
  std::int32_t RunIterations(std::int32_t iterations, IterationCallback callback) override {
    return pool_.iterate(iterations, callback);
  }
  // Answers abortStatus from the abortAt-th call on, on the threads that abortOn allows.
  std::int32_t Progress(std::int32_t, std::int32_t, std::int32_t threadIndex) override {
    const int call = ++progressCalls;
    const bool aborts = abortAt > 0 && call >= abortAt && (abortOn < 0 || abortOn == threadIndex);
    return aborts ? abortStatus : NoErrorCode();
  }

  static constexpr std::int32_t abortStatus = -128;
  int abortAt = 0;
  std::int32_t abortOn = -1;  // any thread
  std::atomic<int> progressCalls{0};

 private:
  std::int32_t threads_;
  ThreadPool pool_;
};

}  // namespace radiashafts::test
