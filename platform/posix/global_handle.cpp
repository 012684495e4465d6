#include "platform/global_handle.h"

#include <cstdlib>

#include "hostapi/constants.h"

namespace radiashafts::platform {

std::int16_t freeGlobalHandle(hostapi::Handle handle) {
  if (handle == nullptr) return hostapi::nilHandleError;
  std::free(*handle);
  std::free(handle);
  return 0;
}

}  // namespace radiashafts::platform
