// Work in stages on a row of chunks, in parallel, with the effects of one thread that takes chunk
// after chunk through all the stages.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

#include "threads/monitor.h"
#include "threads/thread_pool.h"

namespace radiashafts {

// Every chunk goes through all the stages, and every stage takes the chunks in their order, on one
// thread. So a chunk may carry data from stage to stage, and memory that only one stage writes is
// written in the order of the chunks, while the stages run at the same time.
//
// One run: give stageCallback to as many iterations as there are stages. The pool hands iterations
// out in rising order, so a stage that another one waits for is always running or done.
class Pipeline {
 public:
  // Work on one chunk in one stage. The status 0 is success.
  struct Work {
    using Function = std::int32_t (*)(void* context, std::int32_t stage, std::int32_t chunk,
                                      std::int32_t threadIndex);
    void* context = nullptr;
    Function function = nullptr;
  };

  // The earlier stages that a chunk has to have passed before a stage takes it; -1 for none.
  using Predecessors = std::array<std::int32_t, 2>;

  // Throws std::bad_alloc. Without predecessors each stage waits for the one before it; otherwise
  // there are as many as stages, and they outlive the pipeline.
  Pipeline(std::int32_t stages, std::int32_t chunks, Work work,
           const Predecessors* predecessors = nullptr);
  ~Pipeline();
  Pipeline(const Pipeline&) = delete;
  Pipeline& operator=(const Pipeline&) = delete;

  // Runs one stage. A status other than 0, or an exception, ends the work of all stages; the
  // exception is passed on.
  IterationCallback stageCallback();

  // The last status other than 0, of any thread, once the run is over.
  std::int32_t status() const { return status_; }

 private:
  using Counter = std::atomic<std::int32_t>;

  std::int32_t runStage(std::int32_t stage, std::int32_t threadIndex);
  std::int32_t workOn(std::int32_t stage, std::int32_t chunk, std::int32_t threadIndex);
  bool awaitChunk(std::int32_t stage, std::int32_t chunk);
  bool isReady(std::int32_t stage, std::int32_t chunk) const;
  void stop(std::int32_t status);

  std::int32_t chunks_;
  Work work_;
  const Predecessors* predecessors_;
  Monitor monitor_;
  std::unique_ptr<Counter[]> passed_;  // chunks that have passed each stage
  Counter status_ = 0;
};

}  // namespace radiashafts
