#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace radiashafts::standin {

// A picture to show: blue-green-red bytes, rows from the top, each padded to 4 bytes.
struct ShownPicture {
  int width = 0;
  int height = 0;
  std::vector<std::uint8_t> pixels;
};

// A window over the desktop that shows a picture and takes no input, as a host's window does while
// a filter runs. Its messages are dispatched by whoever dispatches those of its thread.
class PictureWindow {
 public:
  // No larger than fits on the screen.
  static ShownPicture maximumSize();
  PictureWindow(const std::string& title, ShownPicture picture);
  ~PictureWindow();
  PictureWindow(const PictureWindow&) = delete;
  PictureWindow& operator=(const PictureWindow&) = delete;

  // The system's handle; null where the system has no windows.
  void* handle() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace radiashafts::standin
