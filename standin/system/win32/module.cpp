#include "standin/system/module.h"
#include <windows.h>

#include <tlhelp32.h>

namespace radiashafts::standin {
namespace {

// Destroyed last of all static objects, after the modules and thread pools of this program. Waits
// for threads that are ending, as a module's worker is after the unloading: Wine 8 ends a process
// with SIGSEGV or SIGKILL when it exits at that moment. A thread that stays costs one second.
struct EndingThreads {
  EndingThreads() = default;
  EndingThreads(const EndingThreads&) = delete;
  EndingThreads& operator=(const EndingThreads&) = delete;
  ~EndingThreads() {
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    const HANDLE all = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    for (BOOL found = Thread32First(all, &entry); found != FALSE;
         found = Thread32Next(all, &entry)) {
      if (entry.th32OwnerProcessID != GetCurrentProcessId()) continue;
      if (entry.th32ThreadID == GetCurrentThreadId()) continue;
      const HANDLE thread = OpenThread(SYNCHRONIZE, FALSE, entry.th32ThreadID);
      if (thread == nullptr) continue;
      WaitForSingleObject(thread, 1000);
      CloseHandle(thread);
    }
    CloseHandle(all);
  }
};
[[gnu::init_priority(101)]] EndingThreads endingThreads;

}  // namespace

bool Module::load(const std::filesystem::path& path) {
  unload();
  handle_ = LoadLibraryW(path.c_str());
  if (handle_ == nullptr) {
    error_ = path.string() + ": cannot be loaded, error " + std::to_string(GetLastError());
  }
  return handle_ != nullptr;
}

void Module::unload() {
  if (handle_ != nullptr) FreeLibrary(static_cast<HMODULE>(handle_));
  handle_ = nullptr;
}

void* Module::symbol(const char* name) const {
  if (handle_ == nullptr) return nullptr;
  return reinterpret_cast<void*>(GetProcAddress(static_cast<HMODULE>(handle_), name));
}

std::filesystem::path executablePath() {
  constexpr DWORD longestPath = 32768;  // characters, including the terminating zero
  std::wstring path(longestPath, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), longestPath));
  return path;
}

}  // namespace radiashafts::standin
