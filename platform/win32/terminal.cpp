#include "platform/terminal.h"

#include <cstdio>

#include <io.h>

namespace radiashafts::platform {

bool errorIsTerminal() {
  return _isatty(_fileno(stderr)) != 0;
}

}  // namespace radiashafts::platform
