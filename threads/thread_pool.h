// Distributes iterations over the calling thread and a set of worker threads.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <exception>

#include "threads/monitor.h"
#include "threads/worker.h"

namespace radiashafts {

// The function of an iteration and its first argument. The others are the iteration's number, the
// number of iterations and the slot of the thread. The status 0 is success.
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

  // Starts workers for count slots, the calling thread's included, clamped to 1 to 64. The count of
  // the first call is kept; later calls try again to start threads that the system refused.
  void init(std::int32_t count);

  // Runs iterations 0 to iterations - 1, distributed one by one in rising order. Call init first. A
  // thread whose callback fails takes no more iterations, the others continue. Returns the status
  // of the calling thread's iterations only. After an exception no more iterations begin; the first
  // exception is thrown here when all threads are done. Calls may not overlap.
  std::int32_t iterate(std::int32_t iterations, IterationCallback callback);

  // Keeps the workers in their loop between calls. A system can take milliseconds to put a sleeping
  // thread on a processor again, and a render calls iterate a dozen times. When the last object of
  // this class is destroyed, the workers leave the module's code.
  class KeepRunning {
   public:
    explicit KeepRunning(ThreadPool& pool) : pool_(pool) { ++pool_.keepers_; }
    ~KeepRunning() {
      if (--pool_.keepers_ == 0) pool_.dismissWorkers();
    }
    KeepRunning(const KeepRunning&) = delete;
    KeepRunning& operator=(const KeepRunning&) = delete;

   private:
    ThreadPool& pool_;
  };

  // Ends the workers.
  void free();

  // Slots in use, the calling thread's included; 0 before init.
  std::int32_t threadCount() const { return threadCount_; }

 private:
  struct WorkerSlot {
    ThreadPool* pool = nullptr;
    std::int32_t index = 0;  // the callback's thread index; slot 0 is the calling thread's
    std::int32_t iterations = 0;
    IterationCallback callback;
    std::int32_t result = 0;
    std::uint32_t served = 0;  // number of the last call that the worker entered
    Worker worker;             // none in slot 0
  };

  // The whole state that the caller and its workers share, in one atomic number.
  struct alignas(8) Handshake {
    std::uint32_t call = 0;      // number of the latest call
    std::uint16_t places = 0;    // workers that may still enter it
    std::uint8_t inside = 0;     // workers that have entered it and not left
    std::uint8_t dismissed = 0;  // 1 when workers are to leave the module's code
  };
  static_assert(sizeof(Handshake) == 8 && std::atomic<Handshake>::is_always_lock_free);

  static void RunWorker(void* slot);
  void serveCalls(WorkerSlot& slot);
  template <class Edit>
  void change(const Edit& edit);
  void openCall();
  void waitForWorkers(std::int32_t iterations);
  void dismissWorkers();
  void forgetLostWorkers();
  void iterateShare(WorkerSlot& slot);
  void keepException(std::int32_t iterations);

  std::int32_t wantedCount_ = 0;  // of the first init
  std::int32_t threadCount_ = 0;
  std::int32_t running_ = 1;  // slots from 1 up to it have a worker in serveCalls
  std::int32_t keepers_ = 0;
  std::atomic<std::int32_t> nextIndex_{0};
  std::atomic<int> callersProcessor_{0};
  std::atomic<Handshake> handshake_{};
  std::atomic_flag failed_;
  std::exception_ptr failure_;  // the first one of the call; read when no worker is inside
  Monitor monitor_;             // of the handshake and the next index
  std::array<WorkerSlot, maximumSlots> slots_;
};

}  // namespace radiashafts
