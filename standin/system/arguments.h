#pragma once

#include <string>
#include <vector>

namespace radiashafts::standin {

// The program's arguments without its name, in UTF-8 on every system.
std::vector<std::string> programArguments(int argc, char** argv);

}  // namespace radiashafts::standin
