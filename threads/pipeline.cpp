#include "threads/pipeline.h"

namespace radiashafts {
namespace {

constexpr std::int32_t stopped = -1;

}  // namespace

Pipeline::Pipeline(std::int32_t stages, std::int32_t chunks, Work work,
                   const Predecessors* predecessors)
    : chunks_(chunks),
      work_(work),
      predecessors_(predecessors),
      passed_(std::make_unique<Counter[]>(static_cast<std::size_t>(stages))) {}

// Here and not in the header, which code for AVX2 includes too.
Pipeline::~Pipeline() = default;

IterationCallback Pipeline::stageCallback() {
  return {this, [](void* pipeline, std::int32_t stage, std::int32_t, std::int32_t threadIndex) {
            return static_cast<Pipeline*>(pipeline)->runStage(stage, threadIndex);
          }};
}

std::int32_t Pipeline::runStage(std::int32_t stage, std::int32_t threadIndex) {
  for (std::int32_t chunk = 0; chunk < chunks_; ++chunk) {
    if (!awaitChunk(stage, chunk)) return 0;
    const std::int32_t status = workOn(stage, chunk, threadIndex);
    if (status != 0) {
      stop(status);
      return status;
    }
    passed_[stage] = chunk + 1;
    monitor_.notify();
  }
  return 0;
}

std::int32_t Pipeline::workOn(std::int32_t stage, std::int32_t chunk, std::int32_t threadIndex) {
  try {
    return work_.function(work_.context, stage, chunk, threadIndex);
  } catch (...) {
    stop(stopped);
    throw;
  }
}

// Waits until the chunk has passed the stages before. False when the work was stopped.
bool Pipeline::awaitChunk(std::int32_t stage, std::int32_t chunk) {
  monitor_.waitUntil([&] { return isReady(stage, chunk) || status_ != 0; });
  return status_ == 0;
}

bool Pipeline::isReady(std::int32_t stage, std::int32_t chunk) const {
  const auto hasPassed = [&](std::int32_t before) { return before < 0 || passed_[before] > chunk; };
  if (predecessors_ == nullptr) return hasPassed(stage - 1);
  return hasPassed(predecessors_[stage][0]) && hasPassed(predecessors_[stage][1]);
}

// Wakes all threads that wait: one that met a status takes no more stages, so there are stages that
// will never be done.
void Pipeline::stop(std::int32_t status) {
  status_ = status;
  monitor_.notify();
}

}  // namespace radiashafts
