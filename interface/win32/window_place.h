// Where a window stands when it is neither maximised nor minimised.
#pragma once

#include <windows.h>

#include <optional>

#include "interface/model/preview_geometry.h"

namespace radiashafts {

struct WindowPlace {
  Box normal;  // screen coordinates
  UINT state;  // SW_ value
};
// None when the system does not tell it.
std::optional<WindowPlace> windowPlace(HWND window);

}  // namespace radiashafts
