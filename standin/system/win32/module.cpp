#include "standin/system/module.h"
#include <windows.h>

namespace radiashafts::standin {

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
