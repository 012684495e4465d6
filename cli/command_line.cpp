#include "cli/command_line.h"

#include <algorithm>
#include <iostream>
#include <map>
#include <memory>
#include <set>

#include <CLI/CLI.hpp>

#include "cli/parameter_options.h"
#include "cli/preset_options.h"
#include "cli/printable.h"
#include "cli/suggestion.h"
#include "standin/system/arguments.h"
#include "standin/system/module.h"

namespace radiashafts::cli {
namespace {

namespace fs = std::filesystem;

constexpr char footer[] =
    "Exit codes: 0 done, 1 some of several pictures failed, 2 command line, 3 unreadable input, 4 "
    "unwritable output, 5 render,\n"
    "130 interrupted, 143 and 129 ended by SIGTERM and SIGHUP. An output is written beside its "
    "place and renamed onto it when complete.";

class Formatter final : public CLI::Formatter {
  std::string make_usage(const CLI::App*, std::string) const override {
    return "Usage: " RADIASHAFTS_PROGRAM_NAME
           " [OPTIONS] INPUT OUTPUT\n"
           "       " RADIASHAFTS_PROGRAM_NAME " [OPTIONS] INPUT... --output-dir DIR\n";
  }
};

// Which files to read and write.
struct Files {
  std::vector<std::string> paths;
  std::string outputDirectory;
  bool overwrite = false;     // inputs
  bool skipExisting = false;  // outputs
};

// Pairs each input with its output. Throws a CLI::Error when the arguments contradict each other.
std::vector<Job> jobsOf(const Files& files) {
  const std::vector<std::string>& paths = files.paths;
  std::vector<Job> jobs;
  if (paths.empty()) throw CLI::RequiredError("INPUT");
  if (files.outputDirectory.empty()) {
    if (paths.size() == 1) throw CLI::RequiredError("OUTPUT, or --output-dir,");
    if (paths.size() > 2) throw CLI::ValidationError("several inputs need --output-dir");
    jobs.push_back({pathOf(paths[0]), pathOf(paths[1])});
  } else {
    std::map<fs::path, std::string> inputOf;
    for (const std::string& path : paths) {
      const fs::path output = pathOf(files.outputDirectory) / pathOf(path).filename();
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

void checkInputsStay(const std::vector<Job>& jobs) {
  std::error_code error;
  std::set<fs::path> inputs;
  for (const Job& job : jobs) inputs.insert(fs::weakly_canonical(job.input, error));
  for (const Job& job : jobs) {
    if (inputs.contains(fs::weakly_canonical(job.output, error))) {
      throw CLI::ValidationError(job.output.string() +
                                 " is an input, too; --overwrite allows to replace it");
    }
  }
}

// Drops the jobs whose outputs are there. They are complete: an output comes in one step.
void skipExisting(CommandLine& commandLine) {
  std::erase_if(commandLine.jobs, [&commandLine](const Job& job) {
    std::error_code error;
    if (!fs::exists(job.output, error)) return false;
    commandLine.notes.push_back(job.output.string() + " exists, and is skipped");
    return true;
  });
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

// A suggestion for the first argument that no option is called.
std::string nearestOption(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) names.push_back(option->get_name());
  for (const std::string& argument : app.remaining()) {
    if (argument.rfind("--", 0) == 0)
      return suggestion(argument.substr(0, argument.find('=')), names);
  }
  return "";
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

  Files files;
  std::string mask;
  std::string module;
  bool listRequested = false;
  app.add_option("paths", files.paths, "Pictures to read, and the one to write")
      ->option_text("INPUT... OUTPUT");
  app.add_option("--output-dir", files.outputDirectory,
                 "Write each output here under its input's name")
      ->type_name("DIR");
  app.add_flag("--skip-existing", files.skipExisting, "Leave out pictures whose output is there");
  app.add_flag("--overwrite", files.overwrite, "Allow outputs in the place of inputs");
  app.add_flag("--fail-fast", commandLine.failFast, "End at the first picture that fails");
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
    commandLine.notes = parameters.notes();
    if (!presets.canRunWithoutPictures() || !files.paths.empty()) {
      commandLine.jobs = jobsOf(files);
      if (!files.overwrite) checkInputsStay(commandLine.jobs);
      if (files.skipExisting) skipExisting(commandLine);
      if (!files.outputDirectory.empty())
        commandLine.outputDirectory = pathOf(files.outputDirectory);
    }
    commandLine.script = presets.apply(parameters, commandLine.quiet);
    if (commandLine.jobs.empty()) {
      printNotes(commandLine);
      parsed.exitCode = exitSuccess;
      return parsed;
    }
  } catch (const CLI::ExtrasError& error) {
    throw Failure{exitUsage, error.what() + nearestOption(app)};
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
