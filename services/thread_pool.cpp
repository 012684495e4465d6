#include "services/thread_pool.h"

#include <algorithm>

#include "diagnostics/debug_log.h"

namespace radiashafts {

ThreadPool& ThreadPool::Instance() {
  static ThreadPool pool;
  return pool;
}

ThreadPool::ThreadPool() {
  trace("ThreadPool::ThreadPool()");
}

ThreadPool::~ThreadPool() {
  trace("ThreadPool::~ThreadPool()");
  free();
}

bool ThreadPool::init(std::int32_t count) {
  trace("ThreadPool::init ()");
  const LogIndent indent;
  if (threadCount_ > 0) return true;

  count = std::clamp(count, 1, maximumSlots);
  for (std::int32_t i = 1; i < count; ++i) {
    if (!slots_[i].worker.start()) {
      free();
      return false;
    }
  }
  trace("threads sucesfully initiated");
  threadCount_ = count;
  return true;
}

void ThreadPool::WorkerShare(void* argument) {
  WorkerSlot& slot = *static_cast<WorkerSlot*>(argument);
  trace("thread ", slot.index, " started");
  slot.pool->iterateShare(slot);
}

void ThreadPool::iterateShare(WorkerSlot& slot) {
  for (std::int32_t i = nextIndex_++; i < slot.iterations; i = nextIndex_++) {
    if (slot.result != 0) return;
    slot.result = slot.callback.function(slot.callback.context, i, slot.iterations, slot.index);
  }
}

std::int32_t ThreadPool::iterate(std::int32_t iterations, IterationCallback callback) {
  trace("ThreadPool::iterate (iterations(", iterations, "))");
  const LogIndent indent;

  nextIndex_ = 0;
  for (std::int32_t i = 0; i < threadCount_; ++i) {
    WorkerSlot& slot = slots_[i];
    slot.iterations = iterations;
    slot.index = i;
    slot.callback = callback;
    slot.result = 0;
    slot.pool = this;
  }
  for (std::int32_t i = 1; i < threadCount_; ++i) slots_[i].worker.run(WorkerShare, &slots_[i]);
  iterateShare(slots_[0]);
  for (std::int32_t i = 1; i < threadCount_; ++i) {
    trace("waiting for thread ", i, " to finish calculations");
    slots_[i].worker.wait();
  }
  trace("all threads finished");
  return slots_[0].result;
}

void ThreadPool::free() {
  trace("ThreadPool::free ()");
  const LogIndent indent;
  for (WorkerSlot& slot : slots_) slot.worker.stop();
}

}  // namespace radiashafts
