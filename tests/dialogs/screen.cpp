#include "tests/dialogs/screen.h"

#include <filesystem>

#include "standin/picture_file.h"

namespace radiashafts::test {

standin::Picture screenPicture(const RECT& rect) {
  standin::Picture picture;
  picture.width = rect.right - rect.left;
  picture.height = rect.bottom - rect.top;
  picture.planes = picture.colorPlanes = 3;
  picture.allocate();

  const HDC screen = GetDC(nullptr);
  const HDC context = CreateCompatibleDC(screen);
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = picture.width;
  info.bmiHeader.biHeight = -picture.height;
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 32;
  void* bits = nullptr;
  const HBITMAP bitmap = CreateDIBSection(context, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ previous = SelectObject(context, bitmap);
  BitBlt(context, 0, 0, picture.width, picture.height, screen, rect.left, rect.top, SRCCOPY);
  GdiFlush();
  const auto* from = static_cast<const std::uint8_t*>(bits);
  for (std::size_t i = 0; i < picture.bytes.size(); i += 3, from += 4) {
    for (std::size_t c = 0; c < 3; ++c) picture.bytes[i + c] = from[2 - c];
  }
  DeleteObject(SelectObject(context, previous));
  DeleteDC(context);
  ReleaseDC(nullptr, screen);
  return picture;
}

COLORREF screenPixel(POINT point) {
  const standin::Picture one = screenPicture({point.x, point.y, point.x + 1, point.y + 1});
  return RGB(one.bytes[0], one.bytes[1], one.bytes[2]);
}

const std::uint8_t* pixelAt(const standin::Picture& picture, int x, int y) {
  return &picture.bytes[static_cast<std::size_t>(y) * picture.rowBytes() +
                        static_cast<std::size_t>(x) * picture.pixelBytes()];
}

void saveScreenshot(const std::string& name) {
  const std::filesystem::path folder = RADIASHAFTS_SCREENSHOTS;
  std::filesystem::create_directories(folder);
  const RECT all{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
  standin::writePictureFile(folder / (name + ".png"), {screenPicture(all), nullptr},
                            [] { return false; });
}

}  // namespace radiashafts::test
