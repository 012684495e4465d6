#include "platform/message_box.h"

#include <cstdio>

namespace radiashafts::platform {

void showErrorBox(const char* title, const char* text) {
  std::fprintf(stderr, "%s: %s\n", title, text);
}

}  // namespace radiashafts::platform
