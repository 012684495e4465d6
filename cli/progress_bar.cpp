#include "cli/progress_bar.h"

#include <algorithm>

#include "cli/printable.h"
#include "standin/system/standard_error.h"

namespace radiashafts::cli {

ProgressBar::ProgressBar(const std::string& label, bool enabled)
    : label_(printable(label)), visible_(enabled && standin::errorIsTerminal()) {}

ProgressBar::~ProgressBar() {
  if (visible_ && shownPercent_ >= 0) standin::writeError("\r\033[K");
}

void ProgressBar::show(std::int32_t done, std::int32_t total) {
  if (!visible_ || total <= 0) return;
  const int percent =
      static_cast<int>(std::clamp<std::int64_t>(std::int64_t{done} * 100 / total, 0, 100));
  if (percent == shownPercent_) return;
  shownPercent_ = percent;
  constexpr int cells = 40;
  std::string bar(static_cast<std::size_t>(percent * cells / 100), '#');
  bar.resize(cells, '.');
  standin::writeError("\r" + label_ + " [" + bar + "] " + std::to_string(percent) + "%\033[K");
}

}  // namespace radiashafts::cli
