// What the user asked for.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "standin/script.h"
#include "standin/stand_in_host.h"

namespace radiashafts::cli {

// Beside these there is standin::interruptCode().
enum ExitCode : int {
  exitSuccess = 0,
  exitUsage = 2,   // the command line
  exitInput = 3,   // a picture, mask or preset that cannot be read
  exitOutput = 4,  // a picture or preset that cannot be written
  exitRender = 5   // the filter: not loaded, out of memory, refused; no threads
};

// Ends the program with the code and one line that names the culprit.
struct Failure {
  int exitCode;
  std::string text;
};

// An argument as a path. Arguments are UTF-8, which is not every system's own way with paths.
std::filesystem::path pathOf(const std::string& text);

struct Job {
  std::filesystem::path input;
  std::filesystem::path output;
};

struct CommandLine {
  std::vector<Job> jobs;
  std::optional<std::filesystem::path> mask;
  std::filesystem::path module;
  standin::Script script;
  standin::HostTraits traits;
  std::vector<std::string> notes;  // for the user, a line each
  std::optional<std::array<std::int16_t, 3>>
      pickedColor;           // by the user of the host's colour picker
  bool ownWindow = true;     // of the host, under the dialogs
  bool printScript = false;  // that the filter hands back
  bool quiet = false;
};

void printNotes(const CommandLine& commandLine);

// Parses the arguments. Where there is nothing left to do (help, version, list, or a mistake, which
// it throws as a Failure) it gives the exit code instead.
struct ParsedCommandLine {
  std::optional<int> exitCode;
  CommandLine commandLine;
};
ParsedCommandLine parseCommandLine(int argc, char** argv);

}  // namespace radiashafts::cli
