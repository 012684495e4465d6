#include "cli/command_line.h"

#include <algorithm>
#include <iostream>
#include <memory>

#include <CLI/CLI.hpp>

#include "cli/encoding_options.h"
#include "cli/help_text.h"
#include "cli/option_list.h"
#include "cli/parameter_options.h"
#include "cli/preset_options.h"
#include "cli/printable.h"
#include "hosts/library/suggestion.h"
#include "standin/program_file.h"
#include "standin/system/arguments.h"
#include "standin/system/picture_window.h"

namespace radiashafts::cli {
namespace {

namespace fs = std::filesystem;

constexpr char footer[] =
    "Exit codes: 0 done, 1 some of several pictures failed, 2 command line, 3 unreadable input, 4 "
    "unwritable output, 5 render,\n"
    "130 interrupted, 143 and 129 ended by SIGTERM and SIGHUP. An output is written beside its "
    "place and renamed onto it when complete.";

// Takes the jobs whose outputs are there off the list. They are complete: an output comes in one
// step.
void skipExisting(CommandLine& commandLine) {
  std::vector<Job>& jobs = commandLine.jobs;
  const auto first = std::stable_partition(jobs.begin(), jobs.end(), [](const Job& job) {
    std::error_code error;
    return !fs::exists(job.output, error);
  });
  commandLine.skipped.assign(first, jobs.end());
  jobs.erase(first, jobs.end());
}

void addFileOptions(CLI::App& app, FileOptions& files, CommandLine& commandLine) {
  app.add_option("paths", files.paths)->option_text("INPUT... OUTPUT")->group("");
  const auto add = [&app](const char* name, auto& value, const char* description) {
    return app.add_option(name, value, description)->group(fileGroup);
  };
  const auto addFlag = [&app](const char* name, bool& value, const char* description) {
    app.add_flag(name, value, description)->group(fileGroup);
  };
  add("--output-dir", files.outputDirectory,
      "Write each output here, under its input's name or that of --name")
      ->type_name("DIR");
  add("--name", files.name,
      "How outputs are called: {stem} stands for the input's name and {ext} for its extension with "
      "the dot, as in '{stem}-rays{ext}'; without --output-dir they stand beside the inputs")
      ->type_name("PATTERN");
  addFlag("--overwrite", files.overwrite, "Allow outputs in the place of inputs");
  addFlag("--fail-fast", commandLine.failFast, "End at the first picture that fails");
  add("--jobs", commandLine.filesAtOnce,
      "Read this many files, and write as many, beside a render; each is a picture in memory "
      "(default 1)")
      ->check(CLI::Range(1, 64).description(""))
      ->type_name("NUMBER");
  add("--mask", files.mask,
      "Selection: a grey picture, white is selected; a pattern as that of --name gives each input "
      "one of its own")
      ->type_name("FILE");
  addFlag(
      "--strict", commandLine.strict,
      "Refuse a mask of another size, which is else scaled, and a picture in which --auto finds "
      "no light");
}

void addSequenceOptions(CLI::App& app, FileOptions& files, std::string& keyFile) {
  const auto add = [&app](const char* name, std::string& value, const char* form,
                          const char* description) {
    app.add_option(name, value, description)->type_name(form)->group(sequenceGroup);
  };
  add("--frames", files.frames, "A-B[xSTEP]",
      "Render these frames, such as 1-2000, 1-99x2 or 1-10,25; in INPUT, OUTPUT, --name and "
      "--mask %d, %04d or #### stands for a frame's number. Without it all frames on the disk; an "
      "INPUT without a number is the same in all frames");
  add("--animate", keyFile, "FILE",
      "Move parameters by this key file: 'frame 1 Origin 0.2 0.3 Intensity 2 frame 50 Intensity "
      "0.5', and so on. Numbers go straight from key to key; where the file begins with "
      "'interpolation smooth', on a cubic curve that rests at the ends and stays between the keys");
  add("--chunk", files.chunk, "K/N",
      "Do the K-th of N parts of all inputs or frames, for several machines at once");
}

// A parameter that the keys move takes no value by hand.
void animate(CommandLine& commandLine, const std::string& keyFile,
             const ParameterOptions& parameters) {
  const std::vector<Job>& jobs = commandLine.jobs;
  if (std::any_of(jobs.begin(), jobs.end(), [](const Job& job) { return !job.frame; })) {
    throw CLI::ValidationError("--animate", "needs frames: --frames, or an INPUT such as %04d.exr");
  }
  const KeyFile& keys = commandLine.keys.emplace(keyFile);
  commandLine.notes.insert(commandLine.notes.end(), keys.notes().begin(), keys.notes().end());
  for (std::size_t i = 0; i < effectTable.size(); ++i) {
    if (keys.moves(i) && parameters.isGiven(i)) {
      throw CLI::ValidationError(optionName(effectTable[i]), keys.name() + " moves it already");
    }
  }
}

// For options that make the filter ask by its dialogs.
void requireDialogs(const char* option) {
  if (standin::hasWindows) return;
  throw CLI::ValidationError(option, "the filter has no dialogs on this system");
}

// Options that simulate hosts with different features.
void addHostOptions(CLI::App& app, CommandLine& commandLine) {
  standin::HostTraits& traits = commandLine.traits;
  constexpr int padding = 52;  // bytes; a multiple of the sample size at every depth
  const auto add = [&app](const char* name, const char* description, auto action) {
    app.add_flag_callback(name, action, description)->group(hostGroup);
  };
  add("--no-suites", "Give no memory suites", [&traits] { traits.suites = false; });
  add("--no-descriptors", "Give no scripting: as chosen from the menu", [&traits] {
    requireDialogs("--no-descriptors");
    traits.descriptors = false;
  });
  add("--no-handle-procs", "Give no handle procs", [&traits] { traits.handleProcs = false; });
  add("--no-display-pixels", "Give no drawing proc", [&traits] { traits.displayPixels = false; });
  add("--no-color-services", "Give no colour picker", [&traits] { traits.colorServices = false; });
  add("--no-sampling", "Never reduce the picture", [&traits] { traits.sampling = false; });
  add("--padded-rows", "Pad rows, input and output differently", [&traits] {
    traits.inputPadding = padding;
    traits.outputPadding = 2 * padding;
    traits.maskPadding = 1;
  });
  add("--dialog", "Ask for the interface", [&traits] {
    requireDialogs("--dialog");
    traits.playInfo = hostapi::playDisplay;
  });
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
      ->group(hostGroup);
  app.add_option("--picked-color", commandLine.pickedColor,
                 "What the host's colour picker answers; else it is cancelled")
      ->type_name("R,G,B")
      ->delimiter(',')
      ->group(hostGroup);
}

// A suggestion for the first argument that no option is called.
std::string nearestOption(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) names.push_back(option->get_name());
  for (const std::string& argument : app.remaining()) {
    if (argument.rfind("--", 0) == 0)
      return hosts::suggestion(argument.substr(0, argument.find('=')), names);
  }
  return "";
}

}  // namespace

void printNotes(const CommandLine& commandLine) {
  if (commandLine.quiet) return;
  for (const std::string& note : commandLine.notes) printMessage("note: " + note);
}

ParsedCommandLine parseCommandLine(int argc, char** argv) {
  ParsedCommandLine parsed;
  CommandLine& commandLine = parsed.commandLine;
  CLI::App app("Paints soft rays of light streaming out of one point of a picture.",
               RADIASHAFTS_PROGRAM_NAME);
  app.formatter(std::make_shared<HelpText>());
  app.footer(footer);
  app.allow_windows_style_options(false);  // a path may begin with a slash
  app.set_help_flag("-h,--help", "Print this help")->group(otherGroup);
  app.set_help_all_flag("--help-host", "Print the options that simulate other hosts")
      ->group(otherGroup);
  app.set_version_flag("--version", "radiashafts " RADIASHAFTS_VERSION, "Print the version")
      ->group(otherGroup);

  FileOptions files;
  std::string keyFile;
  bool skipsExisting = false;
  addFileOptions(app, files, commandLine);
  app.add_flag("--skip-existing", skipsExisting, "Leave out pictures whose output is there")
      ->group(fileGroup);
  addSequenceOptions(app, files, keyFile);
  addEncodingOptions(app, commandLine.reading, commandLine.encoding);
  std::string module;
  bool listRequested = false;
  bool optionsRequested = false;
  app.add_flag("--list-parameters", listRequested, "Print names, defaults, ranges and entries")
      ->group(otherGroup);
  app.add_flag("--quiet", commandLine.quiet, "Print errors only")->group(otherGroup);
  app.add_flag("--json", commandLine.json, "Print one line of JSON for each input")
      ->group(otherGroup);
  app.add_option("--module", module, "The filter module to run")
      ->type_name("FILE")
      ->group(otherGroup);
  addHostOptions(app, commandLine);
  app.add_flag("--list-options", optionsRequested)->group("");  // for other programs
  app.add_flag(
         "--auto", commandLine.choosesValues,
         "Find the light in each picture, choose origin and selection low, lower the intensity "
         "until at most 1 % more of the pixels clip, and print all as options; values given by "
         "hand stay. Without a light only the intensity is lowered")
      ->group(lightGroup);
  const PresetOptions presets(app);
  const ParameterOptions parameters(app);

  try {
    std::vector<std::string> arguments = standin::programArguments(argc, argv);
    std::reverse(arguments.begin(), arguments.end());  // parse() takes them in reverse order
    if (arguments.empty()) {
      std::cerr << firstSteps;
      parsed.exitCode = exitUsage;
      return parsed;
    }
    app.parse(arguments);
    if (listRequested || optionsRequested) {
      if (listRequested) listParameters(std::cout);
      if (optionsRequested) listOptions(std::cout, app);
      parsed.exitCode = exitSuccess;
      return parsed;
    }
    commandLine.notes = parameters.notes();
    if (!presets.canRunWithoutPictures() || !files.paths.empty()) {
      files.format = commandLine.encoding.format;
      commandLine.jobs = jobsOf(files);
      if (commandLine.jobs.empty()) {
        commandLine.notes.push_back("--chunk: no picture is in the part " + files.chunk);
      }
      if (!files.mask.empty() && !commandLine.jobs.empty() && !commandLine.jobs[0].mask) {
        commandLine.mask = pathOf(files.mask);
      }
      if (!keyFile.empty()) animate(commandLine, keyFile, parameters);
      if (skipsExisting) skipExisting(commandLine);
      if (!files.outputDirectory.empty())
        commandLine.outputDirectory = pathOf(files.outputDirectory);
    }
    commandLine.script = presets.apply(parameters, commandLine.quiet);
    commandLine.givenValues = parameters.script();
    commandLine.originInPixels = parameters.originInPixels();
    if (commandLine.jobs.empty() && commandLine.skipped.empty()) {
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
  std::error_code error;
  commandLine.module = module.empty() ? standin::programLibrary(RADIASHAFTS_MODULE_NAME)
                                      : std::filesystem::absolute(pathOf(module), error);
  return parsed;
}

}  // namespace radiashafts::cli
