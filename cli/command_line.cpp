#include "cli/command_line.h"

#include <algorithm>
#include <iostream>
#include <map>
#include <memory>

#include <CLI/CLI.hpp>

#include "cli/parameter_options.h"
#include "cli/preset_options.h"
#include "cli/printable.h"
#include "standin/system/arguments.h"
#include "standin/system/module.h"

namespace radiashafts::cli {
namespace {

constexpr char footer[] =
    "Exit codes: 0 done, 2 command line, 3 unreadable input, 4 unwritable output, 5 render,\n"
    "130 interrupted, 143 and 129 ended by SIGTERM and SIGHUP. An output is written beside its "
    "place and renamed onto it when complete.";

class Formatter final : public CLI::Formatter {
  std::string make_usage(const CLI::App*, std::string) const override {
    return "Usage: " RADIASHAFTS_PROGRAM_NAME
           " [OPTIONS] INPUT OUTPUT\n"
           "       " RADIASHAFTS_PROGRAM_NAME " [OPTIONS] INPUT... --output-dir DIR\n";
  }
};

// Pairs each input with its output. Throws a CLI::Error when the arguments contradict each other.
std::vector<Job> jobsOf(const std::vector<std::string>& paths, const std::string& outputDirectory) {
  namespace fs = std::filesystem;
  std::vector<Job> jobs;
  if (outputDirectory.empty()) {
    if (paths.empty()) throw CLI::RequiredError("INPUT");
    if (paths.size() == 1) throw CLI::RequiredError("OUTPUT, or --output-dir,");
    if (paths.size() > 2) {
      throw CLI::ValidationError("several inputs need --output-dir");
    }
    jobs.push_back({pathOf(paths[0]), pathOf(paths[1])});
  } else {
    if (paths.empty()) throw CLI::RequiredError("INPUT");
    std::error_code error;
    if (!fs::is_directory(pathOf(outputDirectory), error)) {
      throw CLI::ValidationError("--output-dir: " + outputDirectory + ": is no directory");
    }
    std::map<fs::path, std::string> inputOf;
    for (const std::string& path : paths) {
      const fs::path output = pathOf(outputDirectory) / pathOf(path).filename();
      const auto [existing, inserted] = inputOf.emplace(output, path);
      if (!inserted) {
        throw CLI::ValidationError(existing->second + " and " + path + " would both become " +
                                   output.string());
      }
      jobs.push_back({pathOf(path), output});
    }
  }
  return jobs;
}

// Options that simulate hosts with different features.
void addHostOptions(CLI::App& app, CommandLine& commandLine) {
  standin::HostTraits& traits = commandLine.traits;
  constexpr int padding = 52;  // bytes; a multiple of the sample size at every depth
  const auto add = [&app](const char* name, const char* description, auto action) {
    app.add_flag_callback(name, action, description)->group("Host");
  };
  add("--no-suites", "Give no memory suites", [&traits] { traits.suites = false; });
  add("--no-descriptors", "Give no scripting: as chosen from the menu",
      [&traits] { traits.descriptors = false; });
  add("--no-handle-procs", "Give no handle procs", [&traits] { traits.handleProcs = false; });
  add("--no-display-pixels", "Give no drawing proc", [&traits] { traits.displayPixels = false; });
  add("--no-color-services", "Give no colour picker", [&traits] { traits.colorServices = false; });
  add("--no-sampling", "Never reduce the picture", [&traits] { traits.sampling = false; });
  add("--padded-rows", "Pad rows, input and output differently", [&traits] {
    traits.inputPadding = padding;
    traits.outputPadding = 2 * padding;
    traits.maskPadding = 1;
  });
  add("--dialog", "Ask for the interface", [&traits] { traits.playInfo = hostapi::playDisplay; });
  add("--no-owner-window", "Have no window of its own",
      [&commandLine] { commandLine.ownWindow = false; });
  add("--multichannel", "Show the picture as channels without a meaning",
      [&traits] { traits.multichannel = true; });
  add("--print-script", "Print the values that the filter hands back",
      [&commandLine] { commandLine.printScript = true; });
  app.add_option_function<std::uint64_t>(
         "--owner-window",
         [&commandLine](const std::uint64_t& handle) {
           commandLine.traits.ownerWindow = reinterpret_cast<void*>(handle);
           commandLine.ownWindow = false;
         },
         "The window under the dialogs, by the system's handle")
      ->type_name("HANDLE")
      ->group("Host");
  app.add_option("--picked-color", commandLine.pickedColor,
                 "What the host's colour picker answers; else it is cancelled")
      ->type_name("R,G,B")
      ->delimiter(',')
      ->group("Host");
}

}  // namespace

std::filesystem::path pathOf(const std::string& text) {
  return std::u8string(text.begin(), text.end());
}

void printNotes(const CommandLine& commandLine) {
  if (commandLine.quiet) return;
  for (const std::string& note : commandLine.notes) printMessage("note: " + note);
}

ParsedCommandLine parseCommandLine(int argc, char** argv) {
  ParsedCommandLine parsed;
  CommandLine& commandLine = parsed.commandLine;
  CLI::App app("Paints soft rays of light streaming out of one point of a picture.",
               RADIASHAFTS_PROGRAM_NAME);
  app.formatter(std::make_shared<Formatter>());
  app.footer(footer);
  app.allow_windows_style_options(false);  // a path may begin with a slash
  app.set_version_flag("--version", "radiashafts " RADIASHAFTS_VERSION);

  std::vector<std::string> paths;
  std::string outputDirectory;
  std::string mask;
  std::string module;
  bool listRequested = false;
  app.add_option("paths", paths, "Pictures to read, and the one to write")
      ->option_text("INPUT... OUTPUT");
  app.add_option("--output-dir", outputDirectory, "Write each output here under its input's name")
      ->type_name("DIR");
  app.add_option("--mask", mask, "Selection: an 8-bit grey picture of the input's size")
      ->type_name("FILE");
  app.add_option("--module", module, "The filter module to run")->type_name("FILE");
  addHostOptions(app, commandLine);
  app.add_flag("--list-parameters", listRequested, "Tell names, defaults, ranges and entries");
  app.add_flag("--quiet", commandLine.quiet, "Print errors only");
  const PresetOptions presets(app);
  const ParameterOptions parameters(app);

  try {
    std::vector<std::string> arguments = standin::programArguments(argc, argv);
    std::reverse(arguments.begin(), arguments.end());  // parse() takes them in reverse order
    app.parse(arguments);
    if (listRequested) {
      listParameters(std::cout);
      parsed.exitCode = exitSuccess;
      return parsed;
    }
    if (!presets.canRunWithoutPictures() || !paths.empty()) {
      commandLine.jobs = jobsOf(paths, outputDirectory);
    }
    commandLine.notes = parameters.notes();
    commandLine.script = presets.apply(parameters, commandLine.quiet);
    if (commandLine.jobs.empty()) {
      printNotes(commandLine);
      parsed.exitCode = exitSuccess;
      return parsed;
    }
  } catch (const CLI::ParseError& error) {
    if (error.get_exit_code() == 0) {
      parsed.exitCode = app.exit(error);  // help or version
    } else {
      throw Failure{exitUsage, error.what()};
    }
    return parsed;
  }
  if (!mask.empty()) commandLine.mask = pathOf(mask);
  std::error_code error;
  commandLine.module = module.empty()
                           ? standin::executablePath().parent_path() / RADIASHAFTS_MODULE_NAME
                           : std::filesystem::absolute(pathOf(module), error);
  return parsed;
}

}  // namespace radiashafts::cli
