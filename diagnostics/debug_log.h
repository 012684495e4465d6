// The process-wide trace. Where a log file or a console is configured it shows the steps of a run;
// with neither a line costs a look at two pointers.
#pragma once

#include <atomic>
#include <cstdio>
#include <new>
#include <sstream>
#include <string>

#include "platform/console.h"

namespace radiashafts {

enum Severity : int { severityTrace = 1, severityWarning = 2, severityError = 3 };

// Written by the caller at the start of a text of that severity.
inline constexpr char warningMarker[] = "-**### WARNING ###**-: ";
inline constexpr char errorMarker[] = "-**###  ERROR  ###**-: ";

class DebugLog {
 public:
  DebugLog() { RefreshOutputs(); }
  ~DebugLog();
  DebugLog(const DebugLog&) = delete;
  DebugLog& operator=(const DebugLog&) = delete;

  static DebugLog& Instance();

  // Whether a text of the severity is written anywhere. Opens and closes the outputs as they are
  // configured.
  bool isWanted(int severity);
  // Writes the indent and the text, which brings its own line feed. Failures are silent. Takes no
  // lock: a line goes out whole, lines of several threads come in any order.
  void LogMessage(const std::string& text, int severity);

  // The file is opened for appending at the next LogMessage. A file that is open stays.
  void SetLogFile(const std::string& path) { logPath_ = path; }
  void SetConsoleWanted(bool wanted) { consoleWanted_ = wanted; }
  void RefreshOutputs();

  // Raised and lowered by the traced functions, see LogIndent.
  std::atomic<int> indentLevel{0};

 private:
  std::string logPath_;
  std::atomic<std::FILE*> file_{nullptr};
  std::atomic<bool> consoleWanted_{false};
  std::atomic_flag refreshing_;
  int severityThreshold_ = severityTrace;
  platform::Console console_;
};

// One trace line: the parts in order and a line feed. Allocates nothing where nobody wants it; one
// that there is no memory for is dropped.
template <class... Parts>
void logLine(Severity severity, const Parts&... parts) noexcept {
  DebugLog& log = DebugLog::Instance();
  if (!log.isWanted(severity)) return;
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

// Indents the log for the body of a traced function.
class LogIndent {
 public:
  LogIndent() { ++DebugLog::Instance().indentLevel; }
  ~LogIndent() { --DebugLog::Instance().indentLevel; }
  LogIndent(const LogIndent&) = delete;
  LogIndent& operator=(const LogIndent&) = delete;
};

}  // namespace radiashafts
