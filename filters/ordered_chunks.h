// Parallel work whose effects must come out as if chunk after chunk had run on one thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <limits>
#include <memory>

#include "services/halvorsund_host.h"

namespace radiashafts {

// The work is a grid: chunks by blocks. A chunk runs its blocks in order on one thread, and starts
// a block only after the chunk before has finished that block. So two chunks that write to the same
// place within a block do it in the order of their numbers, while chunks a block apart run at the
// same time.
//
// The pool hands chunks out in rising order, so the chunk waited for is always running or done.
class OrderedChunks {
 public:
  OrderedChunks(std::int32_t chunks, std::int32_t blocks)
      : chunks_(chunks), blocks_(blocks), progress_(std::make_unique<Progress[]>(chunks)) {}

  // Calls work(chunk, block, threadIndex) for the whole grid and finish(chunk, threadIndex) once a
  // chunk has all its blocks. finish returns a status; one other than success ends all the work.
  // Returns success or the first other status.
  template <class Work, class Finish>
  std::int32_t run(HalvorsundHost& host, const Work& work, const Finish& finish) {
    struct Call {
      OrderedChunks& grid;
      HalvorsundHost& host;
      const Work& work;
      const Finish& finish;
    } call{*this, host, work, finish};
    status_ = host.NoErrorCode();
    const auto runChunk = [](void* context, std::int32_t chunk, std::int32_t,
                             std::int32_t threadIndex) {
      Call& c = *static_cast<Call*>(context);
      return c.grid.runChunk(c.host, c.work, c.finish, chunk, threadIndex);
    };
    const std::int32_t status = host.RunIterations(chunks_, {&call, runChunk});
    return status != host.NoErrorCode() ? status : status_.load();
  }

 private:
  struct alignas(64) Progress {  // a cache line each: neighbours are written by different threads
    std::atomic<std::int32_t> finishedBlocks{0};
  };
  static constexpr std::int32_t allBlocks = std::numeric_limits<std::int32_t>::max();

  template <class Work, class Finish>
  std::int32_t runChunk(HalvorsundHost& host, const Work& work, const Finish& finish,
                        std::int32_t chunk, std::int32_t threadIndex) {
    for (std::int32_t block = 0; block < blocks_; ++block) {
      if (chunk > 0) waitFor(chunk - 1, block);
      if (status_ != host.NoErrorCode()) return host.NoErrorCode();
      work(chunk, block, threadIndex);
      if (block + 1 < blocks_) publish(chunk, block + 1);
    }
    publish(chunk, allBlocks);
    const std::int32_t status = finish(chunk, threadIndex);
    if (status != host.NoErrorCode()) stop(status);
    return status;
  }

  void waitFor(std::int32_t chunk, std::int32_t block) {
    std::atomic<std::int32_t>& finished = progress_[chunk].finishedBlocks;
    for (std::int32_t seen = finished; seen <= block; seen = finished) finished.wait(seen);
  }

  void publish(std::int32_t chunk, std::int32_t finishedBlocks) {
    progress_[chunk].finishedBlocks = finishedBlocks;
    progress_[chunk].finishedBlocks.notify_all();
  }

  // Lets every waiting chunk go: a thread that met a status leaves chunks undone.
  void stop(std::int32_t status) {
    status_ = status;
    for (std::int32_t chunk = 0; chunk < chunks_; ++chunk) publish(chunk, allBlocks);
  }

  std::int32_t chunks_;
  std::int32_t blocks_;
  std::unique_ptr<Progress[]> progress_;
  std::atomic<std::int32_t> status_{0};
};

}  // namespace radiashafts
