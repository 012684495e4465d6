// What the interface remembers of a user between runs: windows, the preset file, two check boxes
// and the values of the last confirmed run; and the switches of the trace, which users set by hand.
// A value that cannot be read leaves things as they are. Nothing here has a window handle.
#pragma once

#include <cstdint>
#include <string>

#include "parameters/parameters.h"

namespace radiashafts {

// The user's key of the filter. The values of parameters are in one below it.
inline constexpr char settingsKey[] = "SOFTWARE\\Halvorsund\\Photoshop\\Radiashafts";
inline constexpr char lastUsedSubkey[] = "\\LastUsed";

// Takes the values of the last confirmed run, without limits, where the parameters are of the kind
// that is stored. False when none are remembered.
bool ReadLastUsedSettings(const pfParameters& parameters, const std::string& key = settingsKey);
void WriteLastUsedSettings(const pfParameters& parameters, const std::string& key = settingsKey);

// In pixels. The virtual screen is that of all monitors, the full one what a maximised window has.
struct ScreenMetrics {
  std::int32_t virtualWidth = 0;  // 0: the system does not tell
  std::int32_t virtualHeight = 0;
  std::int32_t fullWidth = 0;
  std::int32_t fullHeight = 0;
};

// Where the preview stands when it is not maximised, and the system's number for how it is shown.
struct PreviewPlacement {
  std::int32_t x = 200;
  std::int32_t y = 200;
  std::int32_t width = 400;
  std::int32_t height = 400;
  std::int32_t state = 0;

  bool startsMaximized() const { return (state & 3) == 3; }
};
// As it stood last, brought back onto the screen. At first a square in the screen's middle.
PreviewPlacement ReadPreviewPlacement(const ScreenMetrics& screen,
                                      const std::string& key = settingsKey);
void WritePreviewPlacement(const PreviewPlacement& window, const std::string& key = settingsKey);

struct ParameterPlacement {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::string presetPath;
  bool showHandle = true;
  bool livePreview = true;  // not fixed
};
// Puts the window where it stood last, or into the corner; the other members keep their values
// where none are remembered. Whether the key is there: then OK has the focus.
bool ReadParameterPlacement(ParameterPlacement& window, const ScreenMetrics& screen,
                            const std::string& key = settingsKey);
void WriteParameterPlacement(const ParameterPlacement& window,
                             const std::string& key = settingsKey);

// Switches the trace's console and file on as the user wants. Nothing switches them off.
void ReadDebugSwitches(const std::string& key = settingsKey);

}  // namespace radiashafts
