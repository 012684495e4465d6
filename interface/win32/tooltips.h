#pragma once

#include <windows.h>

namespace radiashafts {

// Gives every control and label of the parameter dialog a tooltip, until the dialog is destroyed.
void showTooltips(HWND dialog);

}  // namespace radiashafts
