// Replaces two functions of the picture library and of a library below it at link time. The
// library's own pool and those of its dependencies end the program if they cannot start a thread;
// the pool here has no threads when threads are scarce.

#include "standin/oiio_threads.h"

#include <algorithm>
#include <latch>
#include <system_error>
#include <thread>
#include <vector>

#include <OpenImageIO/imageio.h>
#include <OpenImageIO/thread.h>

namespace radiashafts::standin {
namespace {

bool canStartThreads(std::size_t count) {
  std::latch end(1);
  std::vector<std::jthread> threads;
  try {
    while (threads.size() < count) threads.emplace_back([&end] { end.wait(); });
  } catch (const std::system_error&) {
    // The number of threads started is checked below.
  }
  end.count_down();
  return threads.size() == count;
}

}  // namespace

bool threadsAreScarce() {
  constexpr std::size_t pools = 3;  // this one, OpenEXR's and the filter's
  static const bool scarce =
      !canStartThreads(pools * std::max(1U, std::thread::hardware_concurrency()));
  return scarce;
}

}  // namespace radiashafts::standin

OIIO_NAMESPACE_BEGIN

thread_pool* default_thread_pool() {
  const unsigned processors = std::max(1U, std::thread::hardware_concurrency());
  // One less than the processors, because the calling thread works too.
  static thread_pool pool(
      radiashafts::standin::threadsAreScarce() ? 0 : static_cast<int>(processors) - 1);
  return &pool;
}

OIIO_NAMESPACE_END

// Called before main by a logger that only a format of volumes uses. It would start four threads,
// and end the program without a word where there are none.
namespace log4cplus {
[[gnu::visibility("default")]] void initializeLog4cplus() {}
}  // namespace log4cplus
