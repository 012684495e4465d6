// What a call says about its pictures, in words or as lines of JSON.
#pragma once

#include <string>
#include <vector>

#include "cli/command_line.h"
#include "cli/progress_line.h"

namespace radiashafts::cli {

// What is said of a picture that has been made.
struct PictureReport {
  int width = 0;  // pixels
  int height = 0;
  int depth = 0;         // bits a channel
  double seconds = 0.0;  // of the filter
  std::vector<std::string> notes;
};

class Report {
 public:
  // Takes the line away before it prints.
  Report(const CommandLine& commandLine, ProgressLine& progress)
      : commandLine_(commandLine), progress_(progress) {}

  void skipped(const Job& job) const;
  void made(const Job& job, const PictureReport& picture) const;
  // One of several pictures has failed, and the others follow.
  void failed(const Job& job, const Failure& failure) const;
  // As failed, where the caller ends the run and tells why.
  void failedAtLast(const Job& job, const Failure& failure) const;

 private:
  void print(const std::string& line) const;

  void printText(const std::string& text) const;

  const CommandLine& commandLine_;
  ProgressLine& progress_;
};

}  // namespace radiashafts::cli
