// Workers on a thread pool of the system: idle threads wait in the system's code, not in the
// module's, so that the module can be unloaded at any time without waiting for a thread.

#include "threads/worker.h"
#include <windows.h>

#include <new>

#include "threads/win32/process_end.h"

namespace radiashafts {

bool processIsEnding = false;

struct Worker::State {
  PTP_POOL pool = nullptr;
  PTP_WORK work = nullptr;
  Function function = nullptr;
  void* context = nullptr;

  static void CALLBACK callBack(PTP_CALLBACK_INSTANCE, void* context, PTP_WORK) {
    const State& state = *static_cast<State*>(context);
    state.function(state.context);
  }

  bool open() {
    pool = CreateThreadpool(nullptr);
    if (pool == nullptr) return false;
    SetThreadpoolThreadMaximum(pool, 1);
    if (SetThreadpoolThreadMinimum(pool, 1) == 0) return false;
    TP_CALLBACK_ENVIRON environment;
    InitializeThreadpoolEnvironment(&environment);
    SetThreadpoolCallbackPool(&environment, pool);
    work = CreateThreadpoolWork(callBack, this, &environment);
    return work != nullptr;
  }

  ~State() {
    if (processIsEnding) return;
    if (work != nullptr) CloseThreadpoolWork(work);
    if (pool != nullptr) CloseThreadpool(pool);
  }
};

Worker::Worker() = default;
Worker::~Worker() {
  stop();
}

bool Worker::start() {
  stop();
  std::unique_ptr<State> state(new (std::nothrow) State);
  if (state == nullptr || !state->open()) return false;
  state_ = std::move(state);
  return true;
}

bool Worker::exists() const {
  return state_ != nullptr;
}

void Worker::stop() {
  state_.reset();
}

void Worker::run(Function function, void* context) {
  state_->function = function;
  state_->context = context;
  SubmitThreadpoolWork(state_->work);
}

// Returns when the callback has left the module's code.
void Worker::wait() {
  WaitForThreadpoolWorkCallbacks(state_->work, FALSE);
}

}  // namespace radiashafts
