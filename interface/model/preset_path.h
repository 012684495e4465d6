// The path of a preset file, which is kept as text of the system's code page.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

namespace radiashafts {

inline constexpr std::size_t maximumPresetPath = 255;  // bytes

struct PresetPath {
  std::string text;        // empty when the file cannot be used
  const char* fault = "";  // why not
};
// From the chosen path and its short form; each is none where the code page lacks characters of it.
PresetPath presetPath(const std::optional<std::string>& chosen,
                      const std::optional<std::string>& shortForm);

}  // namespace radiashafts
