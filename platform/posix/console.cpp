#include "platform/console.h"

#include <cstdio>

namespace radiashafts::platform {

void Console::open(const char*, int, int) {
  ownsConsole_ = false;  // it is the process's standard error
  handle_ = 1;
}

void Console::write(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
}

void Console::close() {
  handle_ = 0;
}

}  // namespace radiashafts::platform
