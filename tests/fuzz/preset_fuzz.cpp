// Any bytes offered as a preset file. The input is a name's length, the name and the file.

#include <algorithm>
#include <cmath>

#include "parameters/effect_parameters.h"
#include "parameters/parameters.h"
#include "parameters/preset_file.h"
#include "tests/fuzz/fuzzing.h"
#include "tests/support/test_folder.h"

namespace radiashafts::test {
namespace {

void tryPresets(const std::string& name, const std::string& content) {
  static const TestFolder folder;
  const std::string path = folder.path("p.cfg");
  folder.write("p.cfg", content);
  EffectParameters effect;
  pfParameters parameters;
  for (pfParameter* parameter : effect.all) parameters.Add(parameter);
  const auto listed = [&] {
    std::vector<std::string> names;
    parameters.GetSettingNames(path, names, effectName);
    return names;
  };

  std::string owner = effectName;
  const bool ours = parameters.IsSettingFileValid(path, owner);
  std::vector<std::string> names = listed();
  for (std::size_t i = 0; i < std::min<std::size_t>(names.size(), 8); ++i) {
    parameters.LoadSettings(names[i], path, nullptr);
    require(names[i].size() <= maximumPresetToken, "names are bounded");
    for (std::size_t p = 0; p < effect.all.size(); ++p) {
      for (const double number : NumbersOf(*effect.all[p])) {
        require(std::isfinite(number), "loaded values are finite");
      }
    }
  }
  require(folder.read("p.cfg") == content, "reading changes nothing");

  require(parameters.SaveSettings(name, path, effectName) == ours, "only what is ours is saved");
  require(ours || folder.read("p.cfg") == content, "a file that is not ours stays as it was");
  if (!ours) return;
  if (!findPreset(content, name)) names.push_back(name);
  require(listed() == names, "entries keep their order");
  require(parameters.LoadSettings(name, path, nullptr), "what was saved can be loaded");

  require(parameters.DeleteSettings(name, path), "what was saved can be deleted");
  names.erase(std::find_if(names.begin(), names.end(), [&](const std::string& other) {
    return equalsIgnoringCase(other, name);
  }));
  require(listed() == names, "the others keep their order, and the file is ours");
}

}  // namespace
}  // namespace radiashafts::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace radiashafts;
  test::Input input(data, size);
  const std::string name = presetNameOf(input.takeText(input.take()));
  if (!name.empty()) test::tryPresets(name, input.takeText(size));
  return 0;
}
