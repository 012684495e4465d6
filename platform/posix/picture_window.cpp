#include "platform/picture_window.h"

namespace radiashafts::platform {

struct PictureWindow::State {};

ShownPicture PictureWindow::room() {
  return {};
}

PictureWindow::PictureWindow(const std::string&, ShownPicture) {}
PictureWindow::~PictureWindow() = default;

void* PictureWindow::handle() const {
  return nullptr;
}

}  // namespace radiashafts::platform
