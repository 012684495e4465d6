#include "standin/program_file.h"

#include "standin/system/module.h"

namespace radiashafts::standin {

namespace fs = std::filesystem;

fs::path besideOrIn(const fs::path& folder, const char* installedFolder, const std::string& name) {
  const fs::path installed = (folder / installedFolder / name).lexically_normal();
  std::error_code error;
  const bool isInstalled = !fs::exists(folder / name, error) && fs::exists(installed, error);
  return isInstalled ? installed : folder / name;
}

fs::path programLibrary(const std::string& name) {
  return besideOrIn(executablePath().parent_path(), RADIASHAFTS_LIBRARY_FOLDER, name);
}

fs::path programData(const std::string& name) {
  return besideOrIn(executablePath().parent_path(), RADIASHAFTS_DATA_FOLDER, name);
}

}  // namespace radiashafts::standin
