// Shares iterations out over the calling thread and a set of waiting workers.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>

#include "platform/monitor.h"
#include "platform/worker.h"

namespace radiashafts {

// What an iteration runs: a context and a function that gets it back with the iteration's number,
// the count of iterations and the slot of the thread it runs on. The status 0 is success.
struct IterationCallback {
  using Function = std::int32_t (*)(void* context, std::int32_t iteration, std::int32_t iterations,
                                    std::int32_t threadIndex);
  void* context = nullptr;
  Function function = nullptr;
};

class ThreadPool {
 public:
  static constexpr std::int32_t maximumSlots = 64;

  ThreadPool();
  ~ThreadPool();
  ThreadPool(const ThreadPool&) = delete;
  ThreadPool& operator=(const ThreadPool&) = delete;

  // The one pool of the process.
  static ThreadPool& Instance();

  // Makes the pool ready with count slots, the calling thread's included, held in 1 to 64. Only
  // the first successful call counts; false when a thread could not be made.
  bool init(std::int32_t count);

  // Runs iterations 0 to iterations - 1, handed out one by one in rising order. A thread whose
  // callback fails takes no more of them, the others go on. Returns the status of the calling
  // thread's share alone. Calls may not overlap.
  std::int32_t iterate(std::int32_t iterations, IterationCallback callback);

  // While one stands the workers stay at hand between calls: a system takes its time to put a
  // thread that sleeps on a processor again, up to some milliseconds, and a render calls a dozen
  // times. After the last one is gone no worker is in the module's code.
  class Attendance {
   public:
    explicit Attendance(ThreadPool& pool) : pool_(pool) { ++pool_.attendances_; }
    ~Attendance() {
      if (--pool_.attendances_ == 0) pool_.dismissWorkers();
    }
    Attendance(const Attendance&) = delete;
    Attendance& operator=(const Attendance&) = delete;

   private:
    ThreadPool& pool_;
  };

  // Ends the workers that were made. A pool that served a call is not used after it.
  void free();

  std::int32_t threadCount() const { return threadCount_; }

 private:
  struct WorkerSlot {
    std::int32_t iterations = 0;
    std::int32_t index = 0;  // the callback's thread index; slot 0 is the calling thread's
    IterationCallback callback;
    std::int32_t result = 0;
    ThreadPool* pool = nullptr;
    std::uint32_t served = 0;  // number of the last call that the worker took part in
    platform::Worker worker;   // none in slot 0
  };

  static void AttendWorker(void* slot);
  void attend(WorkerSlot& slot);
  bool enterCall();
  void leaveCall();
  void callWorkers();
  void dismissWorkers();
  void iterateShare(WorkerSlot& slot);

  std::int32_t threadCount_ = 0;
  std::int32_t attendances_ = 0;
  bool workersAttend_ = false;
  std::atomic<std::int32_t> nextIndex_{0};
  std::atomic<int> callersProcessor_{0};
  std::atomic<std::uint32_t> call_{0};  // number of the latest call
  // Workers at work in the call, less closed once no iteration is left to take: nobody waits for a
  // worker that comes too late.
  static constexpr std::int32_t closed = 1000;
  std::atomic<std::int32_t> workersInCall_{-closed};
  std::atomic<std::int32_t> workersDone_{0};
  std::atomic<bool> dismissed_{false};
  platform::Monitor monitor_;  // of the four above
  std::array<WorkerSlot, maximumSlots> slots_;
};

}  // namespace radiashafts
