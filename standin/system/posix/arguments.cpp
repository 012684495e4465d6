#include "standin/system/arguments.h"

namespace radiashafts::standin {

std::vector<std::string> programArguments(int argc, char** argv) {
  return {argv + (argc > 0 ? 1 : 0), argv + argc};
}

}  // namespace radiashafts::standin
