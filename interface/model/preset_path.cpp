#include "interface/model/preset_path.h"

namespace radiashafts {

PresetPath presetPath(const std::optional<std::string>& chosen,
                      const std::optional<std::string>& shortForm) {
  const std::optional<std::string>& held = chosen ? chosen : shortForm;
  if (!held) return {{}, "its name has characters that this system's code page lacks."};
  if (held->size() > maximumPresetPath) return {{}, "its path is too long."};
  return {*held, ""};
}

}  // namespace radiashafts
