#include "platform/tick.h"

#include <chrono>

namespace radiashafts::platform {

std::uint32_t tickCount() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return static_cast<std::uint32_t>(
      std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

}  // namespace radiashafts::platform
