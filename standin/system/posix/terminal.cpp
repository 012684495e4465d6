#include "standin/system/terminal.h"

#include <unistd.h>

namespace radiashafts::standin {

bool errorIsTerminal() {
  return isatty(STDERR_FILENO) != 0;
}

}  // namespace radiashafts::standin
