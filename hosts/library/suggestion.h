#pragma once

#include <string>
#include <vector>

namespace radiashafts::hosts {

// "; did you mean CANDIDATE?" for the one that the text is a slip of the keyboard away from, else
// empty.
std::string suggestion(const std::string& text, const std::vector<std::string>& candidates);

}  // namespace radiashafts::hosts
