// The host program as a process of its own, and the filter in a thread of this one.
#pragma once

#include <windows.h>

#include <atomic>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "tests/support/module_under_test.h"

namespace radiashafts::test {

// A folder for a test's files.
std::filesystem::path workFolder();

// The host program with the interface asked for. It is ended with this object.
class HostProgram {
 public:
  explicit HostProgram(const std::vector<std::string>& arguments);
  ~HostProgram();
  HostProgram(const HostProgram&) = delete;
  HostProgram& operator=(const HostProgram&) = delete;

  DWORD id() const { return process_.dwProcessId; }
  bool hasEnded() const;
  // Waits for its end. -1 when it does not come.
  int exitCode();
  // What it wrote: the options that the filter handed back, by name.
  std::map<std::string, std::string> options();
  std::string messages();  // what it said of errors

 private:
  std::filesystem::path output_;
  std::filesystem::path errors_;
  PROCESS_INFORMATION process_{};
};

// What a host's procs do before or in place of the stand-in's, which they get; empty for nothing.
struct HostProcs {
  std::function<hostapi::OSErr(hostapi::AdvanceStateProc)> advanceState;
  std::function<hostapi::OSErr(hostapi::DisplayPixelsProc, const hostapi::PSPixelMap&, void*)>
      displayPixels;
};

// A run of the module in a thread of this process, with the interface asked for. One at a time.
class HostThread {
 public:
  HostThread(const standin::Picture& picture, const standin::Script& script,
             standin::HostTraits traits = {}, HostProcs procs = {});
  ~HostThread();
  HostThread(const HostThread&) = delete;
  HostThread& operator=(const HostThread&) = delete;

  // Waits for the run's end.
  const ModuleRun& result();

 private:
  ModuleRun run_;
  std::atomic<DWORD> id_{0};
  std::atomic<bool> ended_{false};
  std::thread thread_;
};

}  // namespace radiashafts::test
