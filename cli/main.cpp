// The command line: a small host that runs the filter module on picture files.

#include "cli/batch.h"
#include "cli/command_line.h"
#include "cli/printable.h"
#include "standin/picture_file.h"
#include "standin/plugin_properties.h"
#include "standin/system/interrupt.h"
#include "standin/system/module.h"

namespace radiashafts::cli {
namespace {

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
  runBatch(commandLine, entry, mask ? &*mask : nullptr);
}

// Turns every exception into one error line and an exit code.
int guarded(int argc, char** argv) {
  const auto failed = [](int exitCode, const std::string& text) {
    printMessage("radiashafts: " + text);
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
