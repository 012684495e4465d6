#include "services/thread_pool.h"

#include <algorithm>
#include <utility>

#include "diagnostics/debug_log.h"
#include "platform/floating_point.h"
#include "platform/processors.h"

namespace radiashafts {

ThreadPool& ThreadPool::Instance() {
  static ThreadPool pool;
  return pool;
}

ThreadPool::ThreadPool() {
  trace("ThreadPool::ThreadPool()");
  for (std::int32_t i = 0; i < maximumSlots; ++i) {
    slots_[i].pool = this;
    slots_[i].index = i;
  }
}

ThreadPool::~ThreadPool() {
  trace("ThreadPool::~ThreadPool()");
  free();
}

void ThreadPool::init(std::int32_t count) {
  trace("ThreadPool::init ()");
  const LogIndent indent;
  leaveLostWorkers();
  if (wantedCount_ == 0) wantedCount_ = std::clamp(count, 1, maximumSlots);
  if (threadCount_ == wantedCount_) return;

  threadCount_ = std::max(threadCount_, 1);
  while (threadCount_ < wantedCount_ && slots_[threadCount_].worker.start()) ++threadCount_;
  if (threadCount_ == wantedCount_) {
    trace("threads sucesfully initiated");
  } else {
    logLine(severityWarning, warningMarker, "the system gave ", threadCount_ - 1, " of ",
            wantedCount_ - 1, " threads");
  }
}

// A process that was forked off after a call makes threads of its own.
void ThreadPool::leaveLostWorkers() {
  if (threadCount_ > 1 && !slots_[1].worker.exists()) threadCount_ = attending_ = 1;
}

// Why every worker enters a call at most once, and never one that is over:
//
// The number of a call and its places, one for each worker, are set in one store. A worker enters
// by taking a place in one compare-exchange of all that it has read, so the call that it enters is
// the one that it read, and open; served keeps it from taking a second place. The caller takes back
// the places that are left, in one step too, and then waits until nobody is inside. From there to
// the next store no worker gets in, so the caller alone touches the slots. A worker reads its
// slot's share of the call only inside.
template <class Edit>
void ThreadPool::change(const Edit& edit) {
  Handshake now = handshake_;
  Handshake next;
  do {
    next = now;
    edit(next);
  } while (!handshake_.compare_exchange_weak(now, next));
}

void ThreadPool::AttendWorker(void* slot) {
  platform::setDefaultFloatingPoint();
  auto& own = *static_cast<WorkerSlot*>(slot);
  own.pool->attend(own);
}

void ThreadPool::attend(WorkerSlot& slot) {
  while (true) {
    Handshake now;
    monitor_.await([&] {
      now = handshake_;
      return now.dismissed != 0 || (now.places > 0 && now.call != slot.served);
    });
    if (now.dismissed != 0) return;
    // A system may wake a worker on the caller's processor and let the two take turns there.
    if (platform::currentProcessor() == callersProcessor_) {
      platform::leaveProcessor(callersProcessor_);
    }
    Handshake entered = now;
    --entered.places;
    ++entered.inside;
    if (!handshake_.compare_exchange_strong(now, entered)) continue;
    slot.served = entered.call;
    trace("thread ", slot.index, " started");
    iterateShare(slot);
    change([](Handshake& h) { --h.inside; });
    monitor_.announce();
  }
}

void ThreadPool::openCall() {
  callersProcessor_ = platform::currentProcessor();
  change([this](Handshake& h) {
    ++h.call;
    h.places = static_cast<std::uint16_t>(threadCount_ - 1);
  });
  if (attending_ > 1) {
    monitor_.announce();
    platform::Monitor::letOthersRun();
  }
  for (; attending_ < threadCount_; ++attending_) {
    slots_[attending_].worker.run(AttendWorker, &slots_[attending_]);
  }
}

// Nobody waits for a worker that comes when no iteration is left.
void ThreadPool::waitForWorkers(std::int32_t iterations) {
  monitor_.await([&] {
    const Handshake now = handshake_;
    return nextIndex_ >= iterations || (now.places == 0 && now.inside == 0);
  });
  change([](Handshake& h) { h.places = 0; });
  monitor_.await([this] { return handshake_.load().inside == 0; });
}

void ThreadPool::dismissWorkers() {
  if (attending_ == 1) return;
  change([](Handshake& h) { h.dismissed = 1; });
  monitor_.announce();
  for (std::int32_t i = 1; i < attending_; ++i) slots_[i].worker.wait();
  change([](Handshake& h) { h.dismissed = 0; });
  attending_ = 1;
}

void ThreadPool::iterateShare(WorkerSlot& slot) {
  try {
    for (std::int32_t i = nextIndex_++; i < slot.iterations; i = nextIndex_++) {
      if (slot.result != 0) return;
      slot.result = slot.callback.function(slot.callback.context, i, slot.iterations, slot.index);
    }
  } catch (...) {
    keepException(slot.iterations);
  }
}

void ThreadPool::keepException(std::int32_t iterations) {
  if (!failed_.test_and_set()) failure_ = std::current_exception();
  nextIndex_ = iterations;
}

std::int32_t ThreadPool::iterate(std::int32_t iterations, IterationCallback callback) {
  trace("ThreadPool::iterate (iterations(", iterations, "))");
  const LogIndent indent;

  const Attendance attendance(*this);
  nextIndex_ = 0;
  for (std::int32_t i = 0; i < threadCount_; ++i) {
    WorkerSlot& slot = slots_[i];
    slot.iterations = iterations;
    slot.callback = callback;
    slot.result = 0;
  }
  openCall();
  iterateShare(slots_[0]);
  for (std::int32_t i = 1; i < threadCount_; ++i) {
    trace("waiting for thread ", i, " to finish calculations");
  }
  waitForWorkers(iterations);
  trace("all threads finished");
  failed_.clear();
  if (const std::exception_ptr failure = std::exchange(failure_, nullptr)) {
    std::rethrow_exception(failure);
  }
  return slots_[0].result;
}

void ThreadPool::free() {
  trace("ThreadPool::free ()");
  const LogIndent indent;
  for (WorkerSlot& slot : slots_) slot.worker.stop();
}

}  // namespace radiashafts
