// The command line: a small host that runs the filter module on picture files.

#include "cli/batch.h"
#include "cli/command_line.h"
#include "cli/printable.h"
#include "hosts/library/effect_module.h"
#include "standin/picture_file.h"
#include "standin/system/interrupt.h"

namespace radiashafts::cli {
namespace {

void run(const CommandLine& commandLine) {
  std::optional<hosts::EffectModule> module;
  std::optional<standin::Mask> mask;
  {
    const standin::ExitOnInterrupt exitOnInterrupt(interruptedLine);
    module.emplace(commandLine.module);
    if (commandLine.mask) mask = standin::readMaskFile(*commandLine.mask);
  }
  printNotes(commandLine);
  runBatch(commandLine, module->entry(), mask ? &*mask : nullptr);
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
