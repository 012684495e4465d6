#include "threads/thread_pool.h"

#include <algorithm>
#include <utility>

#include "diagnostics/debug_log.h"
#include "platform/floating_point.h"
#include "threads/processors.h"

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
  forgetLostWorkers();
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

// A process that was forked after a call has no workers; it starts its own.
void ThreadPool::forgetLostWorkers() {
  if (threadCount_ > 1 && !slots_[1].worker.exists()) threadCount_ = running_ = 1;
}

// Why every worker enters a call at most once, and never one that has ended:
//
// The caller sets the number of a call and its places, one for each worker, in one atomic store. A
// worker enters by a compare-exchange that takes a place and fails if anything has changed since it
// read the handshake; so it enters the call that it read, while that call is open. served keeps it
// from taking a second place. At the end the caller sets the places to 0, again atomically, and
// waits until no worker is inside. Until the next call opens no worker can enter, so only the
// caller accesses the slots. A worker reads its slot only while it is inside.
template <class Edit>
void ThreadPool::change(const Edit& edit) {
  Handshake now = handshake_;
  Handshake next;
  do {
    next = now;
    edit(next);
  } while (!handshake_.compare_exchange_weak(now, next));
}

void ThreadPool::RunWorker(void* slot) {
  platform::setDefaultFloatingPoint();
  auto& own = *static_cast<WorkerSlot*>(slot);
  own.pool->serveCalls(own);
}

void ThreadPool::serveCalls(WorkerSlot& slot) {
  while (true) {
    Handshake now;
    monitor_.waitUntil([&] {
      now = handshake_;
      return now.dismissed != 0 || (now.places > 0 && now.call != slot.served);
    });
    if (now.dismissed != 0) return;
    // The system may wake a worker on the caller's processor, where the two would take turns.
    // Without this, medians of preview renders on two processors are 7 % longer after a rest on
    // Linux and 9 % longer back to back under Wine.
    if (currentProcessor() == callersProcessor_) {
      leaveProcessor(callersProcessor_);
    }
    Handshake entered = now;
    --entered.places;
    ++entered.inside;
    if (!handshake_.compare_exchange_strong(now, entered)) continue;
    slot.served = entered.call;
    trace("thread ", slot.index, " started");
    iterateShare(slot);
    change([](Handshake& h) { --h.inside; });
    monitor_.notify();
  }
}

void ThreadPool::openCall() {
  callersProcessor_ = currentProcessor();
  change([this](Handshake& h) {
    ++h.call;
    h.places = static_cast<std::uint16_t>(threadCount_ - 1);
  });
  if (running_ > 1) {
    monitor_.notify();
    Monitor::yield();
  }
  for (; running_ < threadCount_; ++running_) {
    slots_[running_].worker.run(RunWorker, &slots_[running_]);
  }
}

// Does not wait for workers that have not entered when no iteration is left.
void ThreadPool::waitForWorkers(std::int32_t iterations) {
  monitor_.waitUntil([&] {
    const Handshake now = handshake_;
    return nextIndex_ >= iterations || (now.places == 0 && now.inside == 0);
  });
  change([](Handshake& h) { h.places = 0; });
  monitor_.waitUntil([this] { return handshake_.load().inside == 0; });
}

void ThreadPool::dismissWorkers() {
  if (running_ == 1) return;
  change([](Handshake& h) { h.dismissed = 1; });
  monitor_.notify();
  for (std::int32_t i = 1; i < running_; ++i) slots_[i].worker.wait();
  change([](Handshake& h) { h.dismissed = 0; });
  running_ = 1;
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

  const KeepRunning keepRunning(*this);
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
