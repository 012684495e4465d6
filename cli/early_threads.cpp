// An indirect dependency of the picture library starts threads in its static initialisers and ends
// the program without a message when it cannot. So thread creation is tested before any library is
// initialised, and a failure is reported.

#include <cstddef>

#include <pthread.h>
#include <unistd.h>

#include "cli/command_line.h"

namespace radiashafts::cli {
namespace {

constexpr std::size_t libraryThreads = 4;

pthread_mutex_t startMutex = PTHREAD_MUTEX_INITIALIZER;

void* waitForStart(void*) {
  pthread_mutex_lock(&startMutex);
  pthread_mutex_unlock(&startMutex);
  return nullptr;
}

// Runs before the C++ runtime is initialised: only C and POSIX calls are allowed.
void checkThreadLimit(int, char**, char**) {
  pthread_t threads[libraryThreads];
  std::size_t count = 0;
  pthread_mutex_lock(&startMutex);
  while (count < libraryThreads &&
         pthread_create(&threads[count], nullptr, waitForStart, nullptr) == 0) {
    ++count;
  }
  pthread_mutex_unlock(&startMutex);
  const bool enough = count == libraryThreads;
  while (count > 0) pthread_join(threads[--count], nullptr);
  if (enough) return;
  constexpr char line[] = "radiashafts: the system lets this process have too few threads\n";
  const ssize_t written = write(STDERR_FILENO, line, sizeof line - 1);
  static_cast<void>(written);  // a failed write cannot be reported
  _exit(exitRender);
}

[[gnu::section(".preinit_array"), gnu::used]] void (*const preinitEntry)(int, char**,
                                                                         char**) = checkThreadLimit;

}  // namespace
}  // namespace radiashafts::cli
