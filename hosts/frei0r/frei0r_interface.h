// The frei0r interface for video filters, version 1: the structures that pass between host and
// filter.
#pragma once

namespace radiashafts::hosts::frei0r {

enum PluginType : int { filterPlugin = 0 };
enum ColorModel : int { rgba8888 = 1 };  // bytes of a pixel in memory; alpha is straight
inline constexpr int interfaceVersion = 1;

struct PluginInfo {
  const char* name;
  const char* author;
  int pluginType;
  int colorModel;
  int interfaceVersion;
  int majorVersion;
  int minorVersion;
  int parameterCount;
  const char* explanation;
};

enum ValueType : int {
  switchValue = 0,  // a double, on from 0.5
  numberValue = 1,  // a double, 0 to 1
  colorValue = 2    // a Color
};

struct Color {
  float red, green, blue;  // 0 to 1
};

struct ParameterInfo {
  const char* name;
  int type;
  const char* explanation;
};

}  // namespace radiashafts::hosts::frei0r
