#include "diagnostics/debug_log.h"

#include <algorithm>

namespace radiashafts {

DebugLog& DebugLog::Instance() {
  static DebugLog log;
  return log;
}

DebugLog::~DebugLog() {
  if (std::FILE* file = file_.exchange(nullptr)) std::fclose(file);
}

bool DebugLog::isEnabled(int severity) {
  RefreshOutputs();
  return severity >= severityThreshold_ && (file_.load() != nullptr || console_.isOpen());
}

void DebugLog::LogMessage(const std::string& text, int severity) {
  if (!isEnabled(severity)) return;
  std::string line(static_cast<std::size_t>(std::max(0, indentLevel.load())) * 4, ' ');
  line += text;
  if (std::FILE* file = file_.load()) {
    std::fwrite(line.data(), 1, line.size(), file);
    std::fflush(file);
  }
  if (console_.isOpen()) console_.write(line);
}

void DebugLog::RefreshOutputs() {
  if (refreshing_.test_and_set()) return;  // another thread is refreshing them
  if (file_.load() == nullptr && !logPath_.empty()) {
    file_ = std::fopen(logPath_.c_str(), "a");
  }
  if (!consoleEnabled_ && console_.isOpen()) console_.close();
  if (consoleEnabled_ && !console_.isOpen()) console_.open("Debug Window", 120, 5000);
  refreshing_.clear();
}

}  // namespace radiashafts
