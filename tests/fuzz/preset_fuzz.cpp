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

using Names = std::vector<std::string>;

// A number that rounds to zero from below is read as the zero that a parameter may have already.
std::string withOneZero(std::string text) {
  const std::string negative = "-0.000000";
  for (std::size_t at = 0; (at = text.find(negative, at)) != std::string::npos;) text.erase(at, 1);
  return text;
}

struct Collection {
  Collection() {
    for (pfParameter* parameter : effect.all) parameters.Add(parameter);
  }
  bool isFinite() const {
    for (std::size_t i = 0; i < effect.all.size(); ++i) {
      for (const double number : NumbersOf(*effect.all[i], effectTable[i])) {
        if (!std::isfinite(number)) return false;
      }
    }
    return true;
  }
  EffectParameters effect;
  pfParameters parameters;
};

class Trial {
 public:
  explicit Trial(const std::string& content) : content_(content) {
    folder().write("p.cfg", content_);
    std::string owner = effectName;
    ours_ = values_.parameters.IsSettingFileValid(path_, owner);
    names_ = names();
  }

  // Values of the file's own, so that all kinds of numbers are saved.
  void loadEach() {
    for (const std::string& name : names_) {
      if (&name - names_.data() == 8) break;  // they are as good as many
      values_.parameters.LoadSettings(name, path_, nullptr);
      require(values_.isFinite(), "loaded values are finite");
      require(name.size() <= maximumPresetToken, "names are bounded");
    }
    require(folder().read("p.cfg") == content_, "reading changes nothing");
  }

  void save(const std::string& name) {
    const bool saved = values_.parameters.SaveSettings(name, path_, effectName);
    require(saved == ours_, "what is ours can be saved, and nothing else");
    if (!ours_) {
      require(folder().read("p.cfg") == content_, "a file that is not ours stays as it was");
      return;
    }
    Names expected = names_;
    if (!findPreset(content_, name)) expected.push_back(name);
    require(names() == expected, "entries keep their order");
    Collection loaded;
    require(loaded.parameters.LoadSettings(name, path_, nullptr), "what was saved can be loaded");
    const std::string written = folder().read("p.cfg");
    loaded.parameters.SaveSettings(name, path_, effectName);
    require(withOneZero(folder().read("p.cfg")) == withOneZero(written),
            "loaded values are those that were saved");
    names_ = expected;
  }

  void remove(const std::string& name) {
    const std::string before = folder().read("p.cfg");
    const bool removed = values_.parameters.DeleteSettings(name, path_);
    if (!removed) {
      require(folder().read("p.cfg") == before, "what is not there takes nothing with it");
    }
    if (!ours_) return;
    const auto place = std::find_if(names_.begin(), names_.end(), [&](const std::string& other) {
      return equalsIgnoringCase(other, name);
    });
    require(removed == (place != names_.end()), "what is listed can be deleted");
    if (removed) names_.erase(place);
    require(names() == names_, "the others keep their order, and the file is ours");
  }

 private:
  static const TestFolder& folder() {
    static const TestFolder folder;
    return folder;
  }
  Names names() {
    Names names;
    values_.parameters.GetSettingNames(path_, names, effectName);
    return names;
  }

  const std::string path_ = folder().path("p.cfg");
  const std::string content_;
  Collection values_;
  Names names_;
  bool ours_ = false;
};

}  // namespace
}  // namespace radiashafts::test

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace radiashafts;
  test::Input input(data, size);
  const std::string name = presetNameOf(input.takeText(input.take()));
  if (name.empty()) return 0;
  test::Trial trial(input.takeText(size));
  trial.loadEach();
  trial.save(name);
  trial.remove(name);
  trial.remove(name);
  return 0;
}
