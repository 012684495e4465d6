// The picture library's pool of threads. Its own one, and those of libraries below it, end the
// program where they ask for threads and get none; this one stands in for it, by the linker, and is
// empty then.

#include <algorithm>
#include <latch>
#include <system_error>
#include <thread>
#include <vector>

#include <OpenImageIO/imageio.h>
#include <OpenImageIO/thread.h>

namespace radiashafts::standin {
namespace {

bool canHaveThreads(std::size_t count) {
  std::latch end(1);
  std::vector<std::jthread> threads;
  try {
    while (threads.size() < count) threads.emplace_back([&end] { end.wait(); });
  } catch (const std::system_error&) {
    // The count tells.
  }
  end.count_down();
  return threads.size() == count;
}

// Workers beside the caller.
int workerCount() {
  constexpr unsigned pools = 3;  // this one, that of a format, and the filter's
  const unsigned processors = std::max(1U, std::thread::hardware_concurrency());
  if (canHaveThreads(std::size_t{pools} * processors)) return static_cast<int>(processors) - 1;
  return 0;
}

}  // namespace
}  // namespace radiashafts::standin

OIIO_NAMESPACE_BEGIN

thread_pool* default_thread_pool() {
  static thread_pool pool(radiashafts::standin::workerCount());
  return &pool;
}

OIIO_NAMESPACE_END
