// Another scaling of the screen while a dialog is open.
#pragma once

#include <windows.h>

#include "interface/model/preview_geometry.h"

namespace radiashafts {

// Whether the system itself scales the window's controls; it does so for hosts of its newest kind
// only.
bool isScaledBySystem(HWND dialog);

// Moves and sizes the controls as the client area has changed.
void scaleControls(HWND dialog, Extent from, Extent to);

}  // namespace radiashafts
