#include "hosts/library/own_files.h"

#include <dlfcn.h>

#include "standin/program_file.h"

namespace radiashafts::hosts {
namespace {

namespace fs = std::filesystem;

// The folder of the library, or of the program that it is linked into.
fs::path ownFolder() {
  Dl_info info{};
  if (dladdr(reinterpret_cast<const void*>(&ownModule), &info) == 0) return {};
  std::error_code error;
  fs::path file = fs::canonical(info.dli_fname, error);
  return error ? fs::path(info.dli_fname).parent_path() : file.parent_path();
}

}  // namespace

fs::path ownModule() {
  return standin::besideOrIn(ownFolder(), RADIASHAFTS_LIBRARY_FOLDER, RADIASHAFTS_MODULE_NAME);
}

fs::path ownPresets() {
  return standin::besideOrIn(ownFolder(), RADIASHAFTS_DATA_FOLDER, "radiashafts.cfg");
}

}  // namespace radiashafts::hosts
