#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace radiashafts::platform {

// A second text output beside the host's windows.
class Console {
 public:
  Console() = default;
  ~Console() { close(); }
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  bool isOpen() const { return handle_ != 0; }
  // Columns and lines are the size of the scroll-back where the system has one to size.
  void open(const char* title, int columns, int lines);
  void write(const std::string& text);
  void close();

 private:
  bool ownsConsole_ = false;
  std::atomic<std::uintptr_t> handle_{0};  // read by every thread that logs
};

}  // namespace radiashafts::platform
