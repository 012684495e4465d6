#include "standin/system/module_resource.h"
#include <windows.h>

namespace radiashafts::standin {

const bool modulesHaveResources = true;

std::optional<std::vector<std::uint8_t>> moduleResource(const std::filesystem::path& module,
                                                        const char* type, int id) {
  const HMODULE file = LoadLibraryExW(module.c_str(), nullptr, LOAD_LIBRARY_AS_DATAFILE);
  if (file == nullptr) return std::nullopt;
  std::optional<std::vector<std::uint8_t>> bytes;
  const HRSRC found = FindResourceA(file, MAKEINTRESOURCEA(id), type);
  if (found != nullptr) {
    const auto* data = static_cast<const std::uint8_t*>(LockResource(LoadResource(file, found)));
    bytes.emplace(data, data + SizeofResource(file, found));
  }
  FreeLibrary(file);
  return bytes;
}

}  // namespace radiashafts::standin
