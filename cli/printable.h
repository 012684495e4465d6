// Makes messages safe to print: file names may contain control characters and invalid UTF-8.
#pragma once

#include <ostream>
#include <string>
#include <string_view>

namespace radiashafts::cli {

// The text with control characters and invalid UTF-8 bytes escaped: "\\n", "\\x1b".
std::string printable(std::string_view text);

// Prints the escaped text and a line feed.
void printLine(std::ostream& out, std::string_view text);
// Writes the escaped text and a line feed to standard error.
void printMessage(std::string_view text);

}  // namespace radiashafts::cli
