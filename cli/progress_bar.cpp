#include "cli/progress_bar.h"

#include <algorithm>
#include <cstdio>

#include "cli/printable.h"
#include "standin/system/terminal.h"

namespace radiashafts::cli {

ProgressBar::ProgressBar(const std::string& label, bool enabled)
    : label_(printable(label)), visible_(enabled && standin::errorIsTerminal()) {}

ProgressBar::~ProgressBar() {
  if (visible_ && shownPercent_ >= 0) std::fputs("\r\033[K", stderr);
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
  std::fprintf(stderr, "\r%s [%s] %3d%%\033[K", label_.c_str(), bar.c_str(), percent);
}

}  // namespace radiashafts::cli
