#include "platform/arguments.h"

namespace radiashafts::platform {

std::vector<std::string> programArguments(int argc, char** argv) {
  return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

}  // namespace radiashafts::platform
