#include "platform/tick.h"
#include <windows.h>

namespace radiashafts::platform {

std::uint32_t tickCount() {
  return GetTickCount();
}

}  // namespace radiashafts::platform
