// The options for other programs: completion and the manual page are made from this list.
#pragma once

#include <ostream>

namespace CLI {
class App;
}  // namespace CLI

namespace radiashafts::cli {

// Prints one line for each option of the help, with tabs between: names, the form of its value, the
// words that it takes, group, description. Several names or words have "|" between them, and "-"
// stands for none.
void listOptions(std::ostream& out, const CLI::App& app);

}  // namespace radiashafts::cli
