#include "hosts/library/suggestion.h"

#include <algorithm>
#include <numeric>

namespace radiashafts::hosts {
namespace {

// How many characters have to be inserted, left out or replaced (the Levenshtein distance).
std::size_t distance(const std::string& from, const std::string& to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t replaced = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, replaced});
    }
  }
  return row.back();
}

}  // namespace

std::string suggestion(const std::string& text, const std::vector<std::string>& candidates) {
  const auto nearest = std::min_element(candidates.begin(), candidates.end(),
                                        [&text](const std::string& a, const std::string& b) {
                                          return distance(text, a) < distance(text, b);
                                        });
  if (nearest == candidates.end() || distance(text, *nearest) > (text.size() + 2) / 4) return "";
  return "; did you mean " + *nearest + "?";
}

}  // namespace radiashafts::hosts
