#include "standin/system/drawing.h"
#include <windows.h>

namespace radiashafts::standin {

bool drawPixels(void* deviceContext, int x, int y, int width, int height,
                const std::uint8_t* pixels) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = -height;  // negative: top-down rows
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  return SetDIBitsToDevice(static_cast<HDC>(deviceContext), x, y, static_cast<DWORD>(width),
                           static_cast<DWORD>(height), 0, 0, 0, static_cast<UINT>(height), pixels,
                           &info, DIB_RGB_COLORS) != 0;
}

}  // namespace radiashafts::standin
