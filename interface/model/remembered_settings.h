// The user's settings between runs: window positions, the preset file, two check boxes and the
// values of the last confirmed run; and the trace switches, which users set by hand. A value that
// cannot be read leaves its variable unchanged. Nothing here uses window handles.
#pragma once

#include <cstdint>
#include <string>

#include "parameters/parameters.h"

namespace radiashafts {

// The filter's key in the user's store, and the subkey with the values of the parameters.
inline constexpr char settingsKey[] = "SOFTWARE\\Halvorsund\\Photoshop\\Radiashafts";
inline constexpr char lastUsedSubkey[] = "\\LastUsed";

// Sets the parameters that presets store to the values of the last confirmed run, without clamping.
// False when none are stored.
bool ReadLastUsedSettings(const pfParameters& parameters, const std::string& key = settingsKey);
void WriteLastUsedSettings(const pfParameters& parameters, const std::string& key = settingsKey);

// In pixels. The virtual screen spans all monitors; the full screen is a maximised window's client
// area.
struct ScreenMetrics {
  std::int32_t virtualWidth = 0;  // 0: unknown
  std::int32_t virtualHeight = 0;
  std::int32_t fullWidth = 0;
  std::int32_t fullHeight = 0;
};

// The preview's rectangle when not maximised, in pixels, and the system's show state.
struct PreviewPlacement {
  std::int32_t x = 200;
  std::int32_t y = 200;
  std::int32_t width = 400;
  std::int32_t height = 400;
  std::int32_t state = 0;

  bool startsMaximized() const { return (state & 3) == 3; }
};
// The last placement, moved onto the screen; a centred square when none is stored.
PreviewPlacement ReadPreviewPlacement(const ScreenMetrics& screen,
                                      const std::string& key = settingsKey);
void WritePreviewPlacement(const PreviewPlacement& window, const std::string& key = settingsKey);

struct ParameterPlacement {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::string presetPath;
  bool showHandle = true;
  bool livePreview = true;  // "fixed preview" is not checked
};
// Sets the position to the last one, or to (0, 0) when none is stored; other members without a
// stored value stay unchanged. Returns whether the key exists.
bool ReadParameterPlacement(ParameterPlacement& window, const ScreenMetrics& screen,
                            const std::string& key = settingsKey);
void WriteParameterPlacement(const ParameterPlacement& window,
                             const std::string& key = settingsKey);

// Enables the trace's console and file when the user has set them. Never disables them.
void ReadDebugSwitches(const std::string& key = settingsKey);

}  // namespace radiashafts
