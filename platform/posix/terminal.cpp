#include "platform/terminal.h"

#include <unistd.h>

namespace radiashafts::platform {

bool errorIsTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

}  // namespace radiashafts::platform
