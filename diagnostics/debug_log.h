// The process-wide trace log. It writes to a log file, a console or both when they are configured;
// otherwise a line costs a few atomic operations.
#pragma once

#include <atomic>
#include <cstdio>
#include <new>
#include <sstream>
#include <string>

#include "platform/console.h"

namespace radiashafts {

enum Severity : int { severityTrace = 1, severityWarning = 2, severityError = 3 };

// Prefixes that the caller puts before a text of that severity.
inline constexpr char warningMarker[] = "-**### WARNING ###**-: ";
inline constexpr char errorMarker[] = "-**###  ERROR  ###**-: ";

class DebugLog {
 public:
  DebugLog() { RefreshOutputs(); }
  ~DebugLog();
  DebugLog(const DebugLog&) = delete;
  DebugLog& operator=(const DebugLog&) = delete;

  static DebugLog& Instance();

  // Whether a text of the severity is written to any output. Opens or closes the outputs first to
  // match the configuration.
  bool isEnabled(int severity);
  // Writes the indent and the text, which must end with a line feed. Ignores failures. Takes no
  // lock: each line is written by one call, so lines of several threads do not mix.
  void LogMessage(const std::string& text, int severity);

  // The file is opened for appending at the next LogMessage. A file that is already open is kept.
  void SetLogFile(const std::string& path) { logPath_ = path; }
  void SetConsoleWanted(bool wanted) { consoleEnabled_ = wanted; }
  void RefreshOutputs();

  // Changed by LogIndent.
  std::atomic<int> indentLevel{0};

 private:
  std::string logPath_;
  std::atomic<std::FILE*> file_{nullptr};
  std::atomic<bool> consoleEnabled_{false};
  std::atomic_flag refreshing_;
  int severityThreshold_ = severityTrace;
  platform::Console console_;
};

// Logs one line: the parts in order and a line feed. Allocates nothing when logging is disabled;
// drops the line when memory runs out.
template <class... Parts>
void logLine(Severity severity, const Parts&... parts) noexcept {
  DebugLog& log = DebugLog::Instance();
  if (!log.isEnabled(severity)) return;
  try {
    std::ostringstream stream;
    (stream << ... << parts) << '\n';
    log.LogMessage(stream.str(), severity);
  } catch (const std::bad_alloc&) {
    return;
  }
}

template <class... Parts>
void trace(const Parts&... parts) noexcept {
  logLine(severityTrace, parts...);
}

// RAII: indents the log by one level during its lifetime.
class LogIndent {
 public:
  LogIndent() { ++DebugLog::Instance().indentLevel; }
  ~LogIndent() { --DebugLog::Instance().indentLevel; }
  LogIndent(const LogIndent&) = delete;
  LogIndent& operator=(const LogIndent&) = delete;
};

}  // namespace radiashafts
