#include "hosts/gimp/last_values.h"

#include <filesystem>

#include <libgimp/gimp.h>

namespace radiashafts::gimp {
namespace {

namespace fs = std::filesystem;

// Of the values in GIMP's memory, and of the preset in the file.
constexpr char name[] = "plug-in-radiashafts";

fs::path folder() {
  return fs::path(gimp_directory()) / "radiashafts";
}

std::string lastValuesFile() {
  return folder() / "last-values.cfg";
}

}  // namespace

std::string ownPresetFile() {
  std::error_code error;  // where there is no folder, saving tells why
  fs::create_directories(folder(), error);
  return folder() / "presets.cfg";
}

void keepLastValues(const Session& session) {
  const Values values = valuesOf(session);
  gimp_set_data(name, values.data(), static_cast<guint32>(values.size() * sizeof(double)));
  std::error_code error;
  fs::create_directories(folder(), error);
  // The picture does not wait for the file: GIMP still has the values.
  radiashafts_save_preset(session.get(), lastValuesFile().c_str(), name);
}

void loadLastValues(const Session& session) {
  Values values(static_cast<std::size_t>(gimp_get_data_size(name)) / sizeof(double));
  if (!values.empty() && gimp_get_data(name, values.data())) {
    setValues(session, values);
  } else {
    radiashafts_load_preset(session.get(), lastValuesFile().c_str(), name);
  }
}

}  // namespace radiashafts::gimp
