// Parallel work on a row of portions whose effects must come out as if one thread had done it.
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

// Every portion goes through all the stages, and every stage takes the portions in their order, on
// one thread. So portions may hand something on from stage to stage, and what a stage alone writes
// to it writes in the order of the portions, while stages run at the same time.
//
// The pool hands stages out in rising order, so the stage waited for is always running or done.
class Pipeline {
 public:
  Pipeline(std::int32_t stages, std::int32_t portions)
      : stages_(stages),
        portions_(portions),
        passed_(new (std::nothrow) Counter[static_cast<std::size_t>(stages)]{}) {}

  // Calls work(stage, portion, threadIndex) for all of them. It returns a status; one other than
  // success, or an exception, on any thread, ends all the work. Returns success, the last other
  // status, or OutOfMemoryCode; throws what was thrown.
  template <class Work>
  std::int32_t run(HalvorsundHost& host, const Work& work) {
    if (passed_ == nullptr) return host.OutOfMemoryCode();
    struct Call {
      Pipeline& pipeline;
      HalvorsundHost& host;
      const Work& work;
    } call{*this, host, work};
    status_ = host.NoErrorCode();
    const auto runStage = [](void* context, std::int32_t stage, std::int32_t,
                             std::int32_t threadIndex) {
      Call& c = *static_cast<Call*>(context);
      return c.pipeline.runStage(c.host, c.work, stage, threadIndex);
    };
    const std::int32_t status = host.RunIterations(stages_, {&call, runStage});
    return status != host.NoErrorCode() ? status : status_.load();
  }

 private:
  using Counter = std::atomic<std::int32_t>;

  template <class Work>
  std::int32_t runStage(HalvorsundHost& host, const Work& work, std::int32_t stage,
                        std::int32_t threadIndex) {
    for (std::int32_t portion = 0; portion < portions_; ++portion) {
      if (!mayTake(host, stage, portion)) return host.NoErrorCode();
      const std::int32_t status = takePortion(host, work, stage, portion, threadIndex);
      if (status != host.NoErrorCode()) {
        stop(status);
        return status;
      }
      passed_[stage] = portion + 1;
      monitor_.announce();
    }
    return host.NoErrorCode();
  }

  template <class Work>
  std::int32_t takePortion(HalvorsundHost& host, const Work& work, std::int32_t stage,
                           std::int32_t portion, std::int32_t threadIndex) {
    try {
      return work(stage, portion, threadIndex);
    } catch (...) {
      stop(host.OutOfMemoryCode());  // any status will do: the exception is what comes back
      throw;
    }
  }

  // Waits until the portion has passed the stage before. False when the work was stopped.
  bool mayTake(HalvorsundHost& host, std::int32_t stage, std::int32_t portion) {
    monitor_.await([&] {
      return stage == 0 || passed_[stage - 1] > portion || status_ != host.NoErrorCode();
    });
    return status_ == host.NoErrorCode();
  }

  // Lets everybody who waits go: a thread that met a status takes no more stages, so there are
  // stages that will never be done.
  void stop(std::int32_t status) {
    status_ = status;
    monitor_.announce();
  }

  std::int32_t stages_;
  std::int32_t portions_;
  platform::Monitor monitor_;
  std::unique_ptr<Counter[]> passed_;  // portions that have passed each stage
  Counter status_ = 0;
};

}  // namespace radiashafts::inline RADIASHAFTS_INSTRUCTION_SET
