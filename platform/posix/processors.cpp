#include "platform/processors.h"

#include <algorithm>
#include <thread>

namespace radiashafts::platform {

int processorCount() {
  return static_cast<int>(std::max(1U, std::thread::hardware_concurrency()));
}

}  // namespace radiashafts::platform
