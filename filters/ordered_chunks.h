// Parallel work whose effects must come out as if chunk after chunk had run on one thread.
#pragma once

#include <atomic>
#include <cstdint>
#include <limits>
#include <memory>
#include <new>

#include "image/instruction_set.h"
#include "platform/monitor.h"
#include "services/halvorsund_host.h"

namespace radiashafts::inline RADIASHAFTS_INSTRUCTION_SET {

// The work is a grid: chunks by blocks. A chunk runs its blocks in order on one thread, and starts
// a block only after the chunk before has finished that block. So two chunks that write to the same
// place within a block do it in the order of their numbers, while chunks a block apart run at the
// same time.
//
// The pool hands chunks out in rising order, so the chunk waited for is always running or done.
class OrderedChunks {
 public:
  OrderedChunks(std::int32_t chunks, std::int32_t blocks)
      : chunks_(chunks),
        blocks_(blocks),
        finishedBlocks_(new (std::nothrow) Counter[static_cast<std::size_t>(chunks)]{}) {}

  // Calls work(chunk, block) for the whole grid and finish(chunk, threadIndex) once a chunk has all
  // its blocks. finish returns a status; one other than success, on any thread, ends all the work.
  // Returns success, the last other status, or OutOfMemoryCode.
  template <class Work, class Finish>
  std::int32_t run(HalvorsundHost& host, const Work& work, const Finish& finish) {
    if (finishedBlocks_ == nullptr) return host.OutOfMemoryCode();
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
  using Counter = std::atomic<std::int32_t>;

  static constexpr std::int32_t allBlocks = std::numeric_limits<std::int32_t>::max();

  template <class Work, class Finish>
  std::int32_t runChunk(HalvorsundHost& host, const Work& work, const Finish& finish,
                        std::int32_t chunk, std::int32_t threadIndex) {
    for (std::int32_t block = 0; block < blocks_; ++block) {
      if (!mayEnter(host, chunk, block)) return host.NoErrorCode();
      work(chunk, block);
      publish(chunk, block + 1 < blocks_ ? block + 1 : allBlocks);
    }
    const std::int32_t status = finish(chunk, threadIndex);
    if (status != host.NoErrorCode()) stop(status);
    return status;
  }

  // Waits until the chunk before has left the block. False when the work was stopped.
  bool mayEnter(HalvorsundHost& host, std::int32_t chunk, std::int32_t block) {
    monitor_.await([&] {
      return chunk == 0 || finishedBlocks_[chunk - 1] > block || status_ != host.NoErrorCode();
    });
    return status_ == host.NoErrorCode();
  }

  void publish(std::int32_t chunk, std::int32_t finishedBlocks) {
    finishedBlocks_[chunk] = finishedBlocks;
    monitor_.announce();
  }

  // Lets everybody who waits go: a thread that met a status takes no more chunks, so there are
  // chunks that will never be done.
  void stop(std::int32_t status) {
    status_ = status;
    monitor_.announce();
  }

  std::int32_t chunks_;
  std::int32_t blocks_;
  platform::Monitor monitor_;
  std::unique_ptr<Counter[]> finishedBlocks_;  // of each chunk
  Counter status_ = 0;
};

}  // namespace radiashafts::inline RADIASHAFTS_INSTRUCTION_SET
