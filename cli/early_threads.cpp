// A library far below the picture library starts threads when it is loaded, before main, and ends
// the program without a word where it gets none. So this asks first, before any library begins.

#include <cstddef>

#include <pthread.h>
#include <unistd.h>

#include "cli/command_line.h"

namespace radiashafts::cli {
namespace {

constexpr std::size_t threadsOfLibraries = 4;

pthread_mutex_t gate = PTHREAD_MUTEX_INITIALIZER;

void* passGate(void*) {
  pthread_mutex_lock(&gate);
  pthread_mutex_unlock(&gate);
  return nullptr;
}

// Nothing of C++ has been set up yet.
void askForThreads(int, char**, char**) {
  pthread_t threads[threadsOfLibraries];
  std::size_t count = 0;
  pthread_mutex_lock(&gate);
  while (count < threadsOfLibraries &&
         pthread_create(&threads[count], nullptr, passGate, nullptr) == 0) {
    ++count;
  }
  pthread_mutex_unlock(&gate);
  const bool enough = count == threadsOfLibraries;
  while (count > 0) pthread_join(threads[--count], nullptr);
  if (enough) return;
  constexpr char line[] = "radiashafts: the system lets this process have too few threads\n";
  const ssize_t written = write(STDERR_FILENO, line, sizeof line - 1);
  static_cast<void>(written);  // nobody is left to be told
  _exit(exitRender);
}

[[gnu::section(".preinit_array"), gnu::used]] void (*const first)(int, char**,
                                                                  char**) = askForThreads;

}  // namespace
}  // namespace radiashafts::cli
