// The command line: a small host that runs the filter module on picture files.

#include <chrono>
#include <cstdio>
#include <iostream>

#include "cli/command_line.h"
#include "cli/host_window.h"
#include "cli/parameter_options.h"
#include "cli/printable.h"
#include "cli/progress_bar.h"
#include "standin/picture_file.h"
#include "standin/plugin_properties.h"
#include "standin/stand_in_host.h"
#include "standin/system/interrupt.h"
#include "standin/system/module.h"

namespace radiashafts::cli {
namespace {

constexpr char interrupted[] = "interrupted";
constexpr char interruptedLine[] = "radiashafts: interrupted\n";

bool wasInterrupted() {
  return standin::interruptCode() != 0;
}

void checkMask(const CommandLine& commandLine, const standin::Mask& mask,
               const standin::Picture& picture) {
  if (mask.width == picture.width && mask.height == picture.height) return;
  throw Failure{exitInput, commandLine.mask->string() + ": the mask is " +
                               std::to_string(mask.width) + " x " + std::to_string(mask.height) +
                               " and the picture " + std::to_string(picture.width) + " x " +
                               std::to_string(picture.height)};
}

std::string causeOf(std::int16_t status) {
  if (status == hostapi::memoryFullError) return "not enough memory";
  return "the filter answered " + std::to_string(status);
}

// Replaces the picture with the filtered one and returns the filter's run time in seconds.
double filter(const CommandLine& commandLine, const Job& job, standin::EntryPoint entry,
              const standin::Mask* mask, standin::Picture& picture) {
  ProgressBar bar(job.input.filename().string(), !commandLine.quiet);
  standin::HostTraits traits = commandLine.traits;
  std::optional<standin::PictureWindow> window;
  if (traits.playInfo == hostapi::playDisplay && commandLine.ownWindow) {
    window.emplace(job.input.filename().string(),
                   shownPicture(picture, standin::PictureWindow::maximumSize()));
    traits.ownerWindow = window->handle();
  }
  standin::StandInHost host(picture, mask, traits);
  host.chooseColor = [&commandLine](std::array<std::int16_t, 3>& color) {
    if (commandLine.pickedColor) color = *commandLine.pickedColor;
    return commandLine.pickedColor.has_value();
  };
  host.onProgress = [&bar](std::int32_t done, std::int32_t total) { bar.show(done, total); };
  host.abortWanted = wasInterrupted;
  standin::Picture output;
  const auto start = std::chrono::steady_clock::now();
  const standin::RunResult result = host.run(entry, commandLine.script, output);
  const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;
  if (commandLine.printScript) printScript(std::cout, result.script);
  if (wasInterrupted()) throw Failure{standin::interruptCode(), interrupted};
  if (result.status == hostapi::userCanceledError) {
    throw Failure{exitRender, job.input.string() + ": the filter was cancelled, status -128"};
  }
  if (result.status != 0) {
    throw Failure{exitRender, job.input.string() + ": " + causeOf(result.status)};
  }
  picture = std::move(output);
  return seconds.count();
}

void process(const CommandLine& commandLine, const Job& job, standin::EntryPoint entry,
             const standin::Mask* mask) {
  standin::PictureFile file = [&job] {
    const standin::ExitOnInterrupt exitOnInterrupt(interruptedLine);
    return standin::readPictureFile(job.input);
  }();
  if (mask != nullptr) checkMask(commandLine, *mask, file.picture);
  try {
    standin::checkWritable(job.output, file.picture);
  } catch (const standin::PictureFileError& error) {
    throw Failure{exitOutput, error.what()};
  }
  const int width = file.picture.width;
  const int height = file.picture.height;
  const int depth = file.picture.depth;
  const double seconds = filter(commandLine, job, entry, mask, file.picture);

  standin::WriteResult result;
  try {
    result = standin::writePictureFile(job.output, std::move(file), wasInterrupted);
  } catch (const standin::PictureFileError& error) {
    throw Failure{exitOutput, error.what()};
  }
  if (!result.written) throw Failure{standin::interruptCode(), interrupted};
  if (commandLine.quiet) return;
  for (const std::string& note : result.notes) printLine(std::cerr, "note: " + note);
  std::printf("%s: %d x %d pixels, %d bits a channel, rays in %.2f s\n",
              printable(job.output.string()).c_str(), width, height, depth, seconds);
}

// Reads the entry point's name from the module file before it is loaded, as hosts do. Throws a
// Failure when the module is refused.
std::string entryNameOf(const std::filesystem::path& module) {
  std::error_code error;
  if (!std::filesystem::exists(module, error)) {
    throw Failure{exitRender, module.string() + ": no such module"};
  }
  try {
    return standin::entryPointOf(module);
  } catch (const std::runtime_error& refusal) {
    throw Failure{exitRender, module.string() + ": refused, " + refusal.what()};
  }
}

void run(const CommandLine& commandLine) {
  standin::Module module;
  standin::EntryPoint entry = nullptr;
  std::optional<standin::Mask> mask;
  {
    const standin::ExitOnInterrupt exitOnInterrupt(interruptedLine);
    const std::string entryName = entryNameOf(commandLine.module);
    if (!module.load(commandLine.module)) throw Failure{exitRender, module.error()};
    entry = reinterpret_cast<standin::EntryPoint>(module.symbol(entryName.c_str()));
    if (entry == nullptr) {
      throw Failure{exitRender, commandLine.module.string() + ": exports no " + entryName};
    }
    if (commandLine.mask) mask = standin::readMaskFile(*commandLine.mask);
  }
  printNotes(commandLine);
  for (const Job& job : commandLine.jobs) process(commandLine, job, entry, mask ? &*mask : nullptr);
}

// Turns every exception into one error line and an exit code.
int guarded(int argc, char** argv) {
  const auto failed = [](int exitCode, const std::string& text) {
    printLine(std::cerr, "radiashafts: " + text);
    return exitCode;
  };
  try {
    standin::catchInterrupts();
    const ParsedCommandLine parsed = parseCommandLine(argc, argv);
    if (parsed.exitCode) return *parsed.exitCode;
    run(parsed.commandLine);
    return exitSuccess;
  } catch (const Failure& failure) {
    return failed(failure.exitCode, failure.text);
  } catch (const standin::PictureFileError& error) {
    return failed(exitInput, error.what());
  } catch (const std::bad_alloc&) {
    return failed(exitRender, "not enough memory");
  } catch (const std::exception& error) {  // from libraries
    return failed(exitRender, error.what());
  } catch (...) {
    return failed(exitRender, "an unknown failure");
  }
}

}  // namespace
}  // namespace radiashafts::cli

int main(int argc, char** argv) {
  return radiashafts::cli::guarded(argc, argv);
}
