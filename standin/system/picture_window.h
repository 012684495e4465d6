#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace radiashafts::standin {

// Whether this system has windows, and so the filter its dialogs: true on Windows only.
extern const bool hasWindows;

// A picture to show: blue-green-red bytes, rows from the top, each padded to 4 bytes.
struct ShownPicture {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> pixels;
};

// A disabled window that shows a picture, like a host's window while a filter runs. Its messages
// are dispatched by the message loop of the thread that created it.
class PictureWindow {
 public:
  // The largest picture size that fits on the screen; pixels is empty.
  static ShownPicture maximumSize();
  PictureWindow(const std::string& title, ShownPicture picture);
  ~PictureWindow();
  PictureWindow(const PictureWindow&) = delete;
  PictureWindow& operator=(const PictureWindow&) = delete;

  // The native window handle; null on Linux or if the window could not be created.
  void* handle() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace radiashafts::standin
