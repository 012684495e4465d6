// Places and sizes that depend on the user's system: task bars, fonts, scaling.
#pragma once

#include <functional>
#include <optional>

#include "interface/model/preview_geometry.h"

namespace radiashafts {

// A window's place on the screen, from its placement, which the system counts from the work area of
// the monitor. Shown is where the window is now: the same box where the system counts from the
// screen's corner.
Box placeOnScreen(const Box& placement, const Box& shown, const Box& monitor, const Box& workArea);

// The greatest height, from that of the template's font down, at which all texts fit. None where
// they would be smaller than three quarters of it.
std::optional<int> fittingHeight(int templateHeight, const std::function<bool(int)>& fits);

// A control's box after the size of its dialog's client area has changed.
Box scaled(const Box& box, Extent from, Extent to);

}  // namespace radiashafts
