#include "standin/system/drawing.h"

namespace radiashafts::standin {

bool drawPixels(void*, int, int, int, int, const std::uint8_t*) {
  return false;
}

}  // namespace radiashafts::standin
