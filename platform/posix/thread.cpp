#include "platform/thread.h"

#include <memory>

#include <pthread.h>

namespace radiashafts::platform {
namespace {

struct Start {
  Thread::Function function;
  void* context;
};

void* threadMain(void* argument) {
  const std::unique_ptr<Start> start(static_cast<Start*>(argument));
  start->function(start->context);
  return nullptr;
}

}  // namespace

bool Thread::start(Function function, void* context) {
  auto start = std::make_unique<Start>(Start{function, context});
  pthread_t thread{};
  if (pthread_create(&thread, nullptr, threadMain, start.get()) != 0) return false;
  static_cast<void>(start.release());  // now the thread's own
  handle_ = static_cast<std::uintptr_t>(thread);
  return true;
}

// Joins: the module's code must not be unmapped under a thread that is still leaving it.
void Thread::close() {
  if (handle_ == 0) return;
  pthread_join(static_cast<pthread_t>(handle_), nullptr);
  handle_ = 0;
}

}  // namespace radiashafts::platform
