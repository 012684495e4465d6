#pragma once

#include <string>

#include "diagnostics/debug_log.h"
#include "tests/support/test_folder.h"

namespace radiashafts::test {

// What this process's trace gets from here on. The first one switches the log on.
class LogLines {
 public:
  LogLines() : begin_(content().size()) {}
  std::string text() const { return content().substr(begin_); }

 private:
  static std::string content() {
    static const TestFolder folder;
    DebugLog::Instance().SetLogFile(folder.path("log.txt"));
    DebugLog::Instance().RefreshOutputs();
    std::string text = folder.read("log.txt");
    std::erase(text, '\r');
    return text;
  }

  std::size_t begin_;
};

}  // namespace radiashafts::test
