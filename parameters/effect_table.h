// The parameter table of the effect: names, limits, defaults, keys and texts, each said once.
// Everything that lists parameters is made from it.
#pragma once

#include <array>
#include <cstdint>
#include <span>

#include "hostapi/types.h"
#include "parameters/blend_mode.h"

namespace radiashafts {

// The filter's name: preset files are its own that say so.
inline constexpr char effectName[] = "Radiashafts";

enum class ParameterKind { position, number, boolean, color, list };

// Which limits Validate enforces. An open maximum is only the slider's end.
enum class Bound { none, lower, both };

// Numbers of the list values that the render decides by.
enum class RayMode : std::int32_t { straight = 1, smooth = 2 };
enum class SelectionShowMode : std::int32_t { normal = 1, selectedImage = 2, selectionOnly = 3 };

inline constexpr std::array<const char*, 2> rayModeNames{"straight", "smooth"};
inline constexpr std::array<const char*, 3> selectionShowNames{"normal", "selected image",
                                                               "selection only"};

// A value as scripts know it.
struct ScriptTerm {
  const char* code;         // four characters; null for none
  const char* name;         // in the host's terminology
  const char* description;  // in the host's terminology
};

struct ParameterFacts {
  const char* name;  // the key in preset files
  ParameterKind kind;
  std::array<double, 3> defaults;  // in the parameter's own scale; as many as it has values
  double minimum;
  double maximum;
  Bound bound;
  std::array<ScriptTerm, 3> keys;  // one for each value; none where scripts do not hold it
  std::array<int, 2> controls;     // ids in the dialog: of a number its edit and its slider, of a
                                   // position its edits, else the one control
  std::array<const char*, 2> labels;          // in the dialog
  std::span<const char* const> entries = {};  // of a list
  bool storedInPreset = true;
  bool updatesPreview = true;
};

// In the order of validation, of script writing and of preset files.
// clang-format off
inline constexpr std::array<ParameterFacts, 22> effectTable{{
    {"Origin", ParameterKind::position, {0.5, 0.5}, 0.0, 1.0, Bound::none,
     {{{"ORIX", "origin x", "1.0 is rightmost pixel"},
      {"ORIY", "origin y", "1.0 is lowest pixel"}}},
     {1031, 1032}, {"x-position", "y-position"}},
    {"Intensity", ParameterKind::number, {2.0}, 0.0, 5.0, Bound::lower,
     {{{"INTE", "intensity", "image multiplier"}}},
     {1013, 1011}, {"intensity"}},
    {"RayLength", ParameterKind::number, {1.0}, 0.0, 1.0, Bound::both,
     {{{"RALE", "ray length", "ray length"}}},
     {1028, 1025}, {"length"}},
    {"Radius", ParameterKind::number, {2.0}, 0.0, 5.0, Bound::lower,
     {{{"RADI", "radius", "effect radius"}}},
     {1030, 1027}, {"radius"}},
    {"Contrast", ParameterKind::number, {0.0}, 0.0, 2.0, Bound::lower,
     {{{"CONT", "contrast", "takes effect before blending"}}},
     {1039, 1038}, {"contrast"}},
    {"GammaCorrection", ParameterKind::number, {1.0}, 0.0, 3.0, Bound::lower,
     {{{"GAMA", "gamma correction", "takes effect before blending"}}},
     {1066, 1064}, {"gamma"}},
    {"ColorBalance", ParameterKind::number, {0.0}, -1.0, 1.0, Bound::both,
     {{{"COBA", "color balance", "color bias"}}},
     {1034, 1033}, {"balance"}},
    {"UseImageColor", ParameterKind::boolean, {1.0}, 0.0, 1.0, Bound::none,
     {{{"IMCO", "use image colors", "use image colors"}}},
     {1076}, {"use image colors"}},
    {"Hue", ParameterKind::number, {0.0}, -1.0, 1.0, Bound::both,
     {{{"HSLH", "hue", "takes effect before blending"}}},
     {1014, 1012}, {"hue"}},
    {"Saturation", ParameterKind::number, {0.0}, -1.0, 1.0, Bound::both,
     {{{"HSLS", "saturation", "takes effect before blending"}}},
     {1017, 1016}, {"saturation"}},
    {"Lightness", ParameterKind::number, {0.0}, -1.0, 1.0, Bound::both,
     {{{"HSLL", "lightness", "takes effect before blending"}}},
     {1019, 1018}, {"lightness"}},
    {"SelectionLow", ParameterKind::number, {0.0}, 0.0, 255.0, Bound::both,
     {{{"SELL", "selection low", "lower grayscale selection"}}},
     {1067, 1065}, {"low"}},
    {"SelectionHigh", ParameterKind::number, {255.0}, 0.0, 255.0, Bound::both,
     {{{"SELH", "selection high", "upper grayscale selection"}}},
     {1021, 1020}, {"high"}},
    {"SelectionSoften", ParameterKind::number, {0.0}, 0.0, 3.0, Bound::both,
     {{{"SELS", "selection soften", "Selection Soften based on Climax"}}},
     {1023, 1022}, {"soften"}},
    {"SelectionClimax", ParameterKind::number, {1.0}, -1.0, 1.0, Bound::both,
     {{{"SELC", "selection climax", "Peak intensity when softened"}}},
     {1026, 1024}, {"climax"}},
    {"ColorLow", ParameterKind::color, {1.0, 1.0, 1.0}, 0.0, 1.0, Bound::both,
     {{{"COLR", "low color red", "low intensity color"},
      {"COLG", "low color green", "low intensity color"},
      {"COLB", "low color blue", "low intensity color"}}},
     {1036}, {"low color"}},
    {"ColorHigh", ParameterKind::color, {1.0, 1.0, 1.0}, 0.0, 1.0, Bound::both,
     {{{"COHR", "high color red", "high intensity color"},
      {"COHG", "high color green", "high intensity color"},
      {"COHB", "high color blue", "high intensity color"}}},
     {1037}, {"high color"}},
    {"Mode", ParameterKind::list, {1.0}, 1.0, 2.0, Bound::both,
     {{{"MODE", "mode", "radiashafts mode"}}},
     {1035}, {"mode"}, rayModeNames},
    {"BlendMode", ParameterKind::list, {3.0}, 1.0, 23.0, Bound::both,
     {{{"BLND", "blend mode", "transfer mode"}}},
     {1009}, {"blend"}, blendModeNames},
    {"SelectionShow", ParameterKind::list, {1.0}, 1.0, 3.0, Bound::both,
     {{{"SHOW", "show mode", "what to see"}}},
     {1029}, {"show"}, selectionShowNames},
    {"Randomize", ParameterKind::number, {0.05}, 0.0, 1.0, Bound::lower,
     {},
     {1069, 1068}, {}, {}, false, false},
    {"Randomize Button", ParameterKind::boolean, {0.0}, 0.0, 1.0, Bound::none,
     {},
     {1040}, {"randomize"}, {}, false, false},
}};
// clang-format on

// A script key as the host's descriptors hold it; 0 for none.
constexpr std::uint32_t scriptKey(const ScriptTerm& term) {
  const char* text = term.code;
  if (text == nullptr) return 0;
  return hostapi::fourCharacterCode({text[0], text[1], text[2], text[3], '\0'});
}

constexpr int valueCount(ParameterKind kind) {
  return kind == ParameterKind::position ? 2 : kind == ParameterKind::color ? 3 : 1;
}

}  // namespace radiashafts
