#include "standin/program_file.h"

#include "standin/system/module.h"

namespace radiashafts::standin {
namespace {

namespace fs = std::filesystem;

// The folder is relative to the program's.
fs::path programFile(const std::string& name, const char* installedFolder) {
  const fs::path home = executablePath().parent_path();
  const fs::path installed = (home / installedFolder / name).lexically_normal();
  std::error_code error;
  const bool isInstalled = !fs::exists(home / name, error) && fs::exists(installed, error);
  return isInstalled ? installed : home / name;
}

}  // namespace

fs::path programLibrary(const std::string& name) {
  return programFile(name, RADIASHAFTS_LIBRARY_FOLDER);
}

fs::path programData(const std::string& name) {
  return programFile(name, RADIASHAFTS_DATA_FOLDER);
}

}  // namespace radiashafts::standin
