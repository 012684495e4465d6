#include "interface/model/remembered_settings.h"

#include <array>
#include <cmath>
#include <optional>

#include "diagnostics/debug_log.h"
#include "parameters/visit_parameter.h"
#include "platform/user_store.h"

namespace radiashafts {
namespace {

using platform::UserKey;

// The names of stored values. The names HideHandle and FixedPreview say the opposite of what is
// stored under them: showHandle and livePreview.
constexpr char interfaceX[] = "Interface Position X";
constexpr char interfaceY[] = "Interface Position Y";
constexpr char presetPath[] = "Preset Path";
constexpr char showHandle[] = "Interface HideHandle";
constexpr char livePreview[] = "Interface FixedPreview";
constexpr char previewX[] = "Preview Position X";
constexpr char previewY[] = "Preview Position Y";
constexpr char previewWidth[] = "Preview Position Width";
constexpr char previewHeight[] = "Preview Position Height";
constexpr char previewState[] = "Preview State";
constexpr char console[] = "console";
constexpr char logFile[] = "logfile";

// Appended to the parameter's name.
constexpr std::array<const char*, 2> positionSuffixes{"_X", "_Y"};
constexpr std::array<const char*, 3> colorSuffixes{"_red", "_green", "_blue"};

template <class Value>
std::optional<Value> readValue(const UserKey& key, const std::string& name) {
  Value value{};
  return key.readBytes(name, &value, sizeof value) ? std::optional(value) : std::nullopt;
}

std::optional<double> readDouble(const UserKey& key, const std::string& name) {
  const auto value = readValue<double>(key, name);
  return value && std::isfinite(*value) ? value : std::nullopt;
}

// Sets all values, or none when one is missing.
template <class Vector, std::size_t N>
void readVector(const UserKey& key, Vector& vector, const std::array<const char*, N>& suffixes) {
  typename Vector::Value values{};
  for (std::size_t i = 0; i < N; ++i) {
    const auto value = readDouble(key, vector.GetName() + suffixes[i]);
    if (!value) return;
    values[i] = *value;
  }
  vector.Restore(values);
}

template <class Vector, std::size_t N>
void writeVector(UserKey& key, const Vector& vector, const std::array<const char*, N>& suffixes) {
  for (std::size_t i = 0; i < N; ++i) {
    key.writeBytes(vector.GetName() + suffixes[i], &vector.value()[i], sizeof(double));
  }
}

void readParameter(const UserKey& key, pfParameter& parameter) {
  const std::string& name = parameter.GetName();
  visitParameter(
      parameter,
      ParameterVisitor{[&](pfParameterPosition& p) { readVector(key, p, positionSuffixes); },
                       [&](pfParameterRGB& p) { readVector(key, p, colorSuffixes); },
                       [&](pfParameterFloat& p) {
                         if (const auto v = readDouble(key, name)) p.SetValue(*v);
                       },
                       [&](pfParameterBool& p) {
                         if (const auto v = readValue<std::uint8_t>(key, name)) p.SetValue(*v != 0);
                       },
                       [&](pfParameterInt& p) {
                         if (const auto v = readValue<std::int32_t>(key, name)) p.SetValue(*v);
                       },
                       [&](pfParameterList& p) {
                         const auto v = readValue<std::int32_t>(key, name);
                         if (v && *v > 0) p.SetValue(*v);
                       }});
}

void writeParameter(UserKey& key, pfParameter& parameter) {
  visitParameter(
      parameter,
      ParameterVisitor{[&](const pfParameterPosition& p) { writeVector(key, p, positionSuffixes); },
                       [&](const pfParameterRGB& p) { writeVector(key, p, colorSuffixes); },
                       [&](const auto& p) {
                         const auto v = p.value();
                         key.writeBytes(p.GetName(), &v, sizeof v);
                       }});
}

// Returns whether the value exists.
bool readPixels(const UserKey& key, const char* name, std::int32_t& value) {
  const auto number = key.readNumber(name);
  if (number) value = static_cast<std::int32_t>(*number);
  return number.has_value();
}

void writePixels(UserKey& key, const char* name, std::int32_t value) {
  key.writeNumber(name, static_cast<std::uint32_t>(value));
}

void readFlag(const UserKey& key, const char* name, bool& value) {
  if (const auto byte = readValue<std::uint8_t>(key, name)) value = *byte != 0;
}

void writeFlag(UserKey& key, const char* name, bool value) {
  const std::uint8_t byte = value ? 1 : 0;
  key.writeBytes(name, &byte, sizeof byte);
}

std::int32_t clampedToScreen(std::int32_t position, std::int32_t screenSize) {
  constexpr std::int32_t visible = 50;  // pixels that remain on the screen
  if (position < 0) return 0;
  return position > screenSize ? screenSize - visible : position;
}

void moveOntoScreen(std::int32_t& x, std::int32_t& y, const ScreenMetrics& screen) {
  if (screen.virtualWidth == 0 || screen.virtualHeight == 0) return;
  x = clampedToScreen(x, screen.virtualWidth);
  y = clampedToScreen(y, screen.virtualHeight);
}

// For reading and writing: the text names the opening also on closing. This is intended: texts of
// the log do not change.
void tracePresetPath(const std::string& path) {
  trace("UIProcedure - WM_INITDIALOG: PresetPath(", path, ")");
}

// A square; width and height are both two thirds of the screen's width.
PreviewPlacement defaultPreview(const ScreenMetrics& screen) {
  PreviewPlacement window;
  window.width = static_cast<std::int32_t>(screen.fullWidth * 0.6666666666666666);
  window.height = window.width;
  window.x = (screen.fullWidth - window.width) / 2;
  window.y = (screen.fullHeight - window.width) / 2;
  return window;
}

}  // namespace

bool ReadLastUsedSettings(const pfParameters& parameters, const std::string& key) {
  trace("pfPreviewWin32::ReadLastUsedSettings()");
  const auto lastUsed = UserKey::openForReading(key + lastUsedSubkey);
  if (!lastUsed) return false;
  for (pfParameter* parameter : parameters.all()) {
    if (parameter->storedInPreset) readParameter(*lastUsed, *parameter);
  }
  return true;
}

void WriteLastUsedSettings(const pfParameters& parameters, const std::string& key) {
  trace("pfPreviewWin32::WriteLastUsedSettings()");
  auto lastUsed = UserKey::createForWriting(key + lastUsedSubkey);
  if (!lastUsed) return;
  for (pfParameter* parameter : parameters.all()) {
    if (parameter->storedInPreset) writeParameter(*lastUsed, *parameter);
  }
}

PreviewPlacement ReadPreviewPlacement(const ScreenMetrics& screen, const std::string& key) {
  const auto stored = UserKey::openForReading(key);
  if (!stored) return defaultPreview(screen);
  PreviewPlacement window;
  const bool hasX = readPixels(*stored, previewX, window.x);
  const bool hasY = readPixels(*stored, previewY, window.y);
  const bool hasWidth = readPixels(*stored, previewWidth, window.width);
  const bool hasHeight = readPixels(*stored, previewHeight, window.height);
  readPixels(*stored, previewState, window.state);
  if (hasX && hasY && hasWidth && hasHeight) moveOntoScreen(window.x, window.y, screen);
  return window;
}

void WritePreviewPlacement(const PreviewPlacement& window, const std::string& key) {
  auto stored = UserKey::createForWriting(key);
  if (!stored) return;
  writePixels(*stored, previewX, window.x);
  writePixels(*stored, previewY, window.y);
  writePixels(*stored, previewWidth, window.width);
  writePixels(*stored, previewHeight, window.height);
  writePixels(*stored, previewState, window.state);
}

bool ReadParameterPlacement(ParameterPlacement& window, const ScreenMetrics& screen,
                            const std::string& key) {
  window.x = 0;
  window.y = 0;
  const auto stored = UserKey::openForReading(key);
  if (!stored) return false;
  const bool hasX = readPixels(*stored, interfaceX, window.x);
  const bool hasY = readPixels(*stored, interfaceY, window.y);
  if (hasX && hasY) moveOntoScreen(window.x, window.y, screen);
  const auto path = stored->readText(presetPath);
  if (path) window.presetPath = *path;
  tracePresetPath(path.value_or(""));
  readFlag(*stored, showHandle, window.showHandle);
  readFlag(*stored, livePreview, window.livePreview);
  return true;
}

void WriteParameterPlacement(const ParameterPlacement& window, const std::string& key) {
  auto stored = UserKey::createForWriting(key);
  if (!stored) return;
  writePixels(*stored, interfaceX, window.x);
  writePixels(*stored, interfaceY, window.y);
  stored->writeText(presetPath, window.presetPath);
  tracePresetPath(window.presetPath);
  writeFlag(*stored, showHandle, window.showHandle);
  writeFlag(*stored, livePreview, window.livePreview);
}

void ReadDebugSwitches(const std::string& key) {
  const auto stored = UserKey::openForReading(key);
  if (!stored) return;
  if (stored->readAnyFourBytes(console).value_or(0) != 0) {
    DebugLog::Instance().SetConsoleWanted(true);
  }
  if (const auto path = stored->readText(logFile)) {
    DebugLog::Instance().SetLogFile(*path);
    trace("writing to Logfile at: ", *path);
  }
}

}  // namespace radiashafts
