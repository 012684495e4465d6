#include "standin/system/terminal.h"

#include <cstdio>

#include <io.h>

namespace radiashafts::standin {

bool errorIsTerminal() {
  return _isatty(_fileno(stderr)) != 0;
}

}  // namespace radiashafts::standin
