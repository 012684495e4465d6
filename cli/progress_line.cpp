#include "cli/progress_line.h"

#include "cli/printable.h"
#include "standin/system/standard_error.h"

namespace radiashafts::cli {

ProgressLine::ProgressLine(bool enabled) : enabled_(enabled && standin::errorIsTerminal()) {}

void ProgressLine::show(const std::string& text) {
  if (!enabled_ || text == shown_) return;
  standin::writeError("\r" + printable(text) + "\033[K");
  shown_ = text;
}

void ProgressLine::clear() {
  if (isShown()) standin::writeError("\r\033[K");
  shown_.clear();
}

}  // namespace radiashafts::cli
