// The parameter table of the effect: names, limits, defaults, keys and texts, each said once.
// Everything that lists parameters is made from it.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "hostapi/types.h"
#include "parameters/blend_mode.h"

namespace radiashafts {

enum class ParameterKind { position, number, boolean, color, list };

// Which limits Validate enforces. An open maximum is only the slider's end.
enum class Bound { none, lower, both };

// Numbers of the list values that the render decides by.
enum class RayMode : std::int32_t { straight = 1, smooth = 2 };
enum class SelectionShowMode : std::int32_t { normal = 1, selectedImage = 2, selectionOnly = 3 };

inline constexpr std::array<const char*, 2> rayModeNames{"straight", "smooth"};
inline constexpr std::array<const char*, 3> selectionShowNames{"normal", "selected image",
                                                               "selection only"};

struct ParameterFacts {
  const char* name;  // the key in preset files
  ParameterKind kind;
  std::array<double, 3> defaults;  // in the parameter's own scale; as many as it has values
  double minimum;
  double maximum;
  Bound bound;
  std::array<const char*, 3> keys;  // script keys, null behind the last
  std::array<int, 2> controls;      // ids in the dialog: edit, check box, combo or swatch; slider
  const char* label;                // in the dialog
  std::span<const char* const> entries = {};  // of a list
  bool storedInPreset = true;
  bool updatesPreview = true;
};

// In the order of validation, of script writing and of preset files.
inline constexpr std::array<ParameterFacts, 22> effectTable{{
    {"Origin",
     ParameterKind::position,
     {0.5, 0.5},
     0.0,
     1.0,
     Bound::none,
     {"ORIX", "ORIY"},
     {1031, 1032},
     "position"},
    {"Intensity",
     ParameterKind::number,
     {2.0},
     0.0,
     5.0,
     Bound::lower,
     {"INTE"},
     {1013, 1011},
     "intensity"},
    {"RayLength",
     ParameterKind::number,
     {1.0},
     0.0,
     1.0,
     Bound::both,
     {"RALE"},
     {1028, 1025},
     "length"},
    {"Radius",
     ParameterKind::number,
     {2.0},
     0.0,
     5.0,
     Bound::lower,
     {"RADI"},
     {1030, 1027},
     "radius"},
    {"Contrast",
     ParameterKind::number,
     {0.0},
     0.0,
     2.0,
     Bound::lower,
     {"CONT"},
     {1039, 1038},
     "contrast"},
    {"GammaCorrection",
     ParameterKind::number,
     {1.0},
     0.0,
     3.0,
     Bound::lower,
     {"GAMA"},
     {1066, 1064},
     "gamma"},
    {"ColorBalance",
     ParameterKind::number,
     {0.0},
     -1.0,
     1.0,
     Bound::both,
     {"COBA"},
     {1034, 1033},
     "balance"},
    {"UseImageColor",
     ParameterKind::boolean,
     {1.0},
     0.0,
     1.0,
     Bound::none,
     {"IMCO"},
     {1076},
     "use image colors"},
    {"Hue", ParameterKind::number, {0.0}, -1.0, 1.0, Bound::both, {"HSLH"}, {1014, 1012}, "hue"},
    {"Saturation",
     ParameterKind::number,
     {0.0},
     -1.0,
     1.0,
     Bound::both,
     {"HSLS"},
     {1017, 1016},
     "saturation"},
    {"Lightness",
     ParameterKind::number,
     {0.0},
     -1.0,
     1.0,
     Bound::both,
     {"HSLL"},
     {1019, 1018},
     "lightness"},
    {"SelectionLow",
     ParameterKind::number,
     {0.0},
     0.0,
     255.0,
     Bound::both,
     {"SELL"},
     {1067, 1065},
     "low"},
    {"SelectionHigh",
     ParameterKind::number,
     {255.0},
     0.0,
     255.0,
     Bound::both,
     {"SELH"},
     {1021, 1020},
     "high"},
    {"SelectionSoften",
     ParameterKind::number,
     {0.0},
     0.0,
     3.0,
     Bound::both,
     {"SELS"},
     {1023, 1022},
     "soften"},
    {"SelectionClimax",
     ParameterKind::number,
     {1.0},
     -1.0,
     1.0,
     Bound::both,
     {"SELC"},
     {1026, 1024},
     "climax"},
    {"ColorLow",
     ParameterKind::color,
     {1.0, 1.0, 1.0},
     0.0,
     1.0,
     Bound::both,
     {"COLR", "COLG", "COLB"},
     {1036},
     "low color"},
    {"ColorHigh",
     ParameterKind::color,
     {1.0, 1.0, 1.0},
     0.0,
     1.0,
     Bound::both,
     {"COHR", "COHG", "COHB"},
     {1037},
     "high color"},
    {"Mode",
     ParameterKind::list,
     {1.0},
     1.0,
     2.0,
     Bound::both,
     {"MODE"},
     {1035},
     "mode",
     rayModeNames},
    {"BlendMode",
     ParameterKind::list,
     {3.0},
     1.0,
     23.0,
     Bound::both,
     {"BLND"},
     {1009},
     "blend",
     blendModeNames},
    {"SelectionShow",
     ParameterKind::list,
     {1.0},
     1.0,
     3.0,
     Bound::both,
     {"SHOW"},
     {1029},
     "show",
     selectionShowNames},
    {"Randomize",
     ParameterKind::number,
     {0.05},
     0.0,
     1.0,
     Bound::lower,
     {},
     {1069, 1068},
     "",
     {},
     false,
     false},
    {"Randomize Button",
     ParameterKind::boolean,
     {0.0},
     0.0,
     1.0,
     Bound::none,
     {},
     {1040},
     "randomize",
     {},
     false,
     false},
}};

// A script key as the host's descriptors hold it; 0 for none.
constexpr std::uint32_t scriptKey(const char* text) {
  if (text == nullptr) return 0;
  return hostapi::fourCharacterCode({text[0], text[1], text[2], text[3], '\0'});
}

constexpr int valueCount(ParameterKind kind) {
  return kind == ParameterKind::position ? 2 : kind == ParameterKind::color ? 3 : 1;
}

}  // namespace radiashafts
