// Messages as they may be shown: names of files can hold anything.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace radiashafts::cli {

// The text with control characters, and bytes that are no UTF-8, written out: "\\n", "\\x1b".
std::string printable(std::string_view text);

// Prints the text as one line.
void printLine(std::ostream& out, std::string_view text);

}  // namespace radiashafts::cli
