#include "platform/drawing.h"

namespace radiashafts::platform {

bool drawPixels(void*, int, int, int, int, const std::uint8_t*) {
  return false;
}

}  // namespace radiashafts::platform
