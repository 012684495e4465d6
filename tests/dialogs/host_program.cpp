#include "tests/dialogs/host_program.h"

#include <fstream>
#include <iterator>

#include "tests/dialogs/input.h"

namespace radiashafts::test {
namespace {

HANDLE createInheritable(const std::filesystem::path& path) {
  SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
  return CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inheritable, CREATE_ALWAYS,
                     FILE_ATTRIBUTE_NORMAL, nullptr);
}

std::filesystem::path newFile() {
  static int count = 0;
  return workFolder() / (std::to_string(++count) + ".txt");
}

std::string contents(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return std::string(std::istreambuf_iterator<char>(stream), {});
}

}  // namespace

std::filesystem::path workFolder() {
  const std::filesystem::path folder =
      std::filesystem::temp_directory_path() /
      ("radiashafts-dialogs-" + std::to_string(GetCurrentProcessId()));
  std::filesystem::create_directories(folder);
  return folder;
}

HostProgram::HostProgram(const std::vector<std::string>& arguments)
    : output_(newFile()), errors_(newFile()) {
  std::string line = "\"" RADIASHAFTS_PROGRAM "\" --print-script";
  for (const std::string& argument : arguments) line += " \"" + argument + "\"";
  STARTUPINFOA startup{};
  startup.cb = sizeof startup;
  startup.dwFlags = STARTF_USESTDHANDLES;
  startup.hStdOutput = createInheritable(output_);
  startup.hStdError = createInheritable(errors_);
  CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                 &process_);
  CloseHandle(startup.hStdOutput);
  CloseHandle(startup.hStdError);
}

HostProgram::~HostProgram() {
  if (!hasEnded()) TerminateProcess(process_.hProcess, 99);
  WaitForSingleObject(process_.hProcess, 5000);
  CloseHandle(process_.hThread);
  CloseHandle(process_.hProcess);
}

bool HostProgram::hasEnded() const {
  return WaitForSingleObject(process_.hProcess, 0) == WAIT_OBJECT_0;
}

int HostProgram::exitCode() {
  if (WaitForSingleObject(process_.hProcess, 60000) != WAIT_OBJECT_0) return -1;
  DWORD code = 0;
  GetExitCodeProcess(process_.hProcess, &code);
  return static_cast<int>(code);
}

std::map<std::string, std::string> HostProgram::options() {
  std::map<std::string, std::string> options;
  std::ifstream stream(output_);
  for (std::string line; std::getline(stream, line);) {
    if (!line.empty() && line.back() == '\r') line.pop_back();
    const std::size_t blank = line.find(' ');
    if (line.rfind("--", 0) == 0 && blank != std::string::npos) {
      options[line.substr(0, blank)] = line.substr(blank + 1);
    }
  }
  return options;
}

std::string HostProgram::messages() {
  return contents(errors_);
}

namespace {

HostProcs hostProcs;
hostapi::FilterRecord standIns;

hostapi::OSErr advanceState() {
  return hostProcs.advanceState(standIns.advanceState);
}

hostapi::OSErr displayPixels(const hostapi::PSPixelMap* map, const hostapi::VRect*, std::int32_t,
                             std::int32_t, void* context) {
  return hostProcs.displayPixels(standIns.displayPixels, *map, context);
}

void enterWithProcs(std::int16_t selector, void* block, std::intptr_t* data, std::int16_t* result) {
  auto* record = static_cast<hostapi::FilterRecord*>(block);
  if (selector == hostapi::selectorStart) {
    standIns = *record;
    if (hostProcs.advanceState) record->advanceState = advanceState;
    if (hostProcs.displayPixels) record->displayPixels = displayPixels;
  }
  moduleEntry()(selector, block, data, result);
}

}  // namespace

HostThread::HostThread(const standin::Picture& picture, const standin::Script& script,
                       standin::HostTraits traits, HostProcs procs) {
  traits.playInfo = hostapi::playDisplay;
  hostProcs = std::move(procs);
  thread_ = std::thread([this, &picture, script, traits] {
    id_ = GetCurrentThreadId();
    standin::StandInHost host(picture, nullptr, traits);
    run_.result = host.run(enterWithProcs, script, run_.output);
    ended_ = true;
  });
}

// A test that gave up has left the dialogs open.
HostThread::~HostThread() {
  if (!thread_.joinable()) return;
  while (!ended_) {
    EnumThreadWindows(
        id_,
        [](HWND window, LPARAM) {
          PostMessageA(window, WM_CLOSE, 0, 0);
          return TRUE;
        },
        0);
    PostThreadMessageA(id_, WM_QUIT, 0, 0);
    Sleep(100);
  }
  thread_.join();
}

const ModuleRun& HostThread::result() {
  thread_.join();
  return run_;
}

}  // namespace radiashafts::test
