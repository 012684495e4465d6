#include "platform/processors.h"
#include <windows.h>

namespace radiashafts::platform {

int processorCount() {
  SYSTEM_INFO info;
  GetSystemInfo(&info);
  return info.dwNumberOfProcessors > 0 ? static_cast<int>(info.dwNumberOfProcessors) : 1;
}

}  // namespace radiashafts::platform
