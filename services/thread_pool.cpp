#include "services/thread_pool.h"

#include <algorithm>

#include "diagnostics/debug_log.h"
#include "platform/processors.h"

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

void ThreadPool::AttendWorker(void* argument) {
  WorkerSlot& slot = *static_cast<WorkerSlot*>(argument);
  slot.pool->attend(slot);
}

void ThreadPool::attend(WorkerSlot& slot) {
  while (true) {
    monitor_.await([&] { return call_ != slot.served || dismissed_; });
    const std::uint32_t latest = call_;
    if (latest == slot.served) return;
    // A system may wake a worker on the caller's processor and let the two take turns there.
    if (platform::currentProcessor() == callersProcessor_) {
      platform::leaveProcessor(callersProcessor_);
    }
    if (enterCall()) {
      slot.served = call_;  // stays while the worker is in it
      trace("thread ", slot.index, " started");
      iterateShare(slot);
      leaveCall();
    } else {
      slot.served = latest;
    }
  }
}

bool ThreadPool::enterCall() {
  std::int32_t workers = workersInCall_;
  while (workers >= 0) {
    if (workersInCall_.compare_exchange_weak(workers, workers + 1)) return true;
  }
  return false;
}

void ThreadPool::leaveCall() {
  ++workersDone_;
  --workersInCall_;
  monitor_.announce();
}

void ThreadPool::callWorkers() {
  workersDone_ = 0;
  workersInCall_ = 0;
  callersProcessor_ = platform::currentProcessor();
  ++call_;
  if (workersAttend_) {
    monitor_.announce();
    return monitor_.letOthersRun();
  }
  for (std::int32_t i = 1; i < threadCount_; ++i) {
    slots_[i].served = call_ - 1;
    slots_[i].worker.run(AttendWorker, &slots_[i]);
  }
  workersAttend_ = true;
}

void ThreadPool::dismissWorkers() {
  if (!workersAttend_) return;
  dismissed_ = true;
  monitor_.announce();
  for (std::int32_t i = 1; i < threadCount_; ++i) slots_[i].worker.wait();
  dismissed_ = false;
  workersAttend_ = false;
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

  const Attendance attendance(*this);
  nextIndex_ = 0;
  for (std::int32_t i = 0; i < threadCount_; ++i) {
    WorkerSlot& slot = slots_[i];
    slot.iterations = iterations;
    slot.index = i;
    slot.callback = callback;
    slot.result = 0;
    slot.pool = this;
  }
  callWorkers();
  iterateShare(slots_[0]);
  for (std::int32_t i = 1; i < threadCount_; ++i) {
    trace("waiting for thread ", i, " to finish calculations");
  }
  monitor_.await([&] { return nextIndex_ >= iterations || workersDone_ == threadCount_ - 1; });
  workersInCall_ -= closed;
  monitor_.await([this] { return workersInCall_ == -closed; });
  trace("all threads finished");
  return slots_[0].result;
}

void ThreadPool::free() {
  trace("ThreadPool::free ()");
  const LogIndent indent;
  for (WorkerSlot& slot : slots_) slot.worker.stop();
}

}  // namespace radiashafts
