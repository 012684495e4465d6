#include "interface/win32/system_colors.h"

namespace radiashafts {

void SystemColors::update() {
  HIGHCONTRASTA contrast{};
  contrast.cbSize = sizeof contrast;
  highContrast_ = SystemParametersInfoA(SPI_GETHIGHCONTRAST, sizeof contrast, &contrast, 0) != 0 &&
                  (contrast.dwFlags & HCF_HIGHCONTRASTON) != 0;
}

INT_PTR SystemColors::colorEdit(HDC context) const {
  if (highContrast_) return 0;
  SetTextColor(context, RGB(255, 0, 0));
  SetBkColor(context, RGB(255, 255, 255));
  return reinterpret_cast<INT_PTR>(GetStockObject(WHITE_BRUSH));
}

COLORREF SystemColors::margin() const {
  return highContrast_ ? GetSysColor(COLOR_WINDOW) : 0xBBBBBB;
}

HBRUSH SystemColors::frame() const {
  return highContrast_ ? GetSysColorBrush(COLOR_WINDOWTEXT)
                       : static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
}

}  // namespace radiashafts
