// The parsed command line.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "cli/job_list.h"
#include "cli/key_file.h"
#include "standin/picture_file.h"
#include "standin/script.h"
#include "standin/stand_in_host.h"

namespace radiashafts::cli {

// An interrupted program exits with standin::interruptCode() instead.
enum ExitCode : int {
  exitSuccess = 0,
  exitPartial = 1,  // some of several pictures failed
  exitUsage = 2,    // the command line
  exitInput = 3,    // a picture, mask or preset that cannot be read
  exitOutput = 4,   // a picture or preset that cannot be written
  exitRender = 5    // module not loaded or refused, filter failed, no memory, no threads
};

// Thrown to end the program with this exit code and one line that names the cause.
struct Failure {
  int exitCode;
  std::string text;
};

struct CommandLine {
  std::vector<Job> jobs;
  std::vector<Job> skipped;                              // their outputs are there
  std::optional<std::filesystem::path> outputDirectory;  // made where there is none
  std::optional<std::filesystem::path> mask;             // of all pictures
  std::filesystem::path module;
  standin::ReadingOptions reading;
  standin::EncodingOptions encoding;
  standin::Script script;
  standin::Script givenValues;                          // of the script, those of parameter options
  std::optional<std::array<double, 2>> originInPixels;  // in the place of the scripts' origins
  std::optional<KeyFile> keys;                          // of the frames, over the scripts
  standin::HostTraits traits;
  std::vector<std::string> notes;  // for the user, one line each
  std::optional<std::array<std::int16_t, 3>>
      pickedColor;           // result of the host's colour picker; none cancels it
  bool ownWindow = true;     // show a host window as the owner of the dialogs
  bool printScript = false;  // print the script that the filter returns
  bool quiet = false;
  bool json = false;      // one line for each input
  bool failFast = false;  // a failed picture ends the run
  bool strict = false;    // a mask of another size, and a picture without a light, are failures
  bool choosesValues = false;  // for each picture, but not those that are given
  int filesAtOnce = 1;         // read, and written, beside a render
};

void printNotes(const CommandLine& commandLine);

// exitCode is set when nothing is left to do: help, version, a list, or presets only. Throws a
// Failure on a usage error.
struct ParsedCommandLine {
  std::optional<int> exitCode;
  CommandLine commandLine;
};
ParsedCommandLine parseCommandLine(int argc, char** argv);

}  // namespace radiashafts::cli
