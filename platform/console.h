#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace radiashafts::platform {

// A text output for the log: a console window on Windows, standard error on Linux.
class Console {
 public:
  Console() = default;
  ~Console() { close(); }
  Console(const Console&) = delete;
  Console& operator=(const Console&) = delete;

  bool isOpen() const { return handle_ != 0; }
  // columns and lines set the size of the console's buffer; ignored on Linux.
  void open(const char* title, int columns, int lines);
  void write(const std::string& text);
  void close();

 private:
  bool ownsConsole_ = false;
  std::atomic<std::uintptr_t> handle_{0};  // read by every thread that logs
};

}  // namespace radiashafts::platform
