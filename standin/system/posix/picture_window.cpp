#include "standin/system/picture_window.h"

namespace radiashafts::standin {

const bool hasWindows = false;

struct PictureWindow::State {};

ShownPicture PictureWindow::maximumSize() {
  return {};
}

// NOLINTNEXTLINE(performance-unnecessary-value-param): the Windows version stores it.
PictureWindow::PictureWindow(const std::string&, ShownPicture) {}
PictureWindow::~PictureWindow() = default;

void* PictureWindow::handle() const {
  return nullptr;
}

}  // namespace radiashafts::standin
