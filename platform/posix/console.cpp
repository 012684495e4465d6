#include "platform/console.h"

#include <cstdio>

namespace radiashafts::platform {

void Console::open(const char*, int, int) {
  handle_ = 1;
}

void Console::write(const std::string& text) {
  std::fwrite(text.data(), 1, text.size(), stderr);
}

void Console::close() {
  handle_ = 0;
}

}  // namespace radiashafts::platform
