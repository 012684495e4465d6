// The picture library's pool of threads. Its own one, and those of libraries below it, end the
// program where they ask for threads and get none; this one stands in for it, by the linker, and is
// empty then.

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

}  // namespace

bool threadsAreScarce() {
  constexpr std::size_t pools = 3;  // this one, that of a format, and the filter's
  static const bool scarce =
      !canHaveThreads(pools * std::max(1U, std::thread::hardware_concurrency()));
  return scarce;
}

}  // namespace radiashafts::standin

OIIO_NAMESPACE_BEGIN

thread_pool* default_thread_pool() {
  const unsigned processors = std::max(1U, std::thread::hardware_concurrency());
  // The caller works too.
  static thread_pool pool(
      radiashafts::standin::threadsAreScarce() ? 0 : static_cast<int>(processors) - 1);
  return &pool;
}

OIIO_NAMESPACE_END
