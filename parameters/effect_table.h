// The effect's parameter table: names, limits, defaults, script keys and texts. Parameter objects,
// dialog, command-line options and script terminology are generated from it.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "hostapi/types.h"
#include "parameters/modes.h"

namespace radiashafts {

// The filter's name, which also marks the preset files that belong to it.
inline constexpr char effectName[] = "Radiashafts";

enum class ParameterKind { position, number, boolean, color, list };

// Which limits Validate enforces. A maximum that is not enforced is only the end of the slider.
enum class Bound { none, lower, both };

// One value in the host's scripts.
struct ScriptTerm {
  const char* code;         // four characters; null for none
  const char* name;         // in the host's terminology
  const char* description;  // in the host's terminology
};

struct ParameterFacts {
  const char* name;  // the key in preset files
  ParameterKind kind;
  std::array<double, 3> defaults;  // valueCount of them are used
  const char* help;                // one sentence: what it does to the light
  double minimum;
  double maximum;
  Bound bound;
  std::array<ScriptTerm, 3> keys = {};  // one for each value; empty when scripts do not store it
  std::array<int, 2> controls;  // ids in the dialog: edit and slider of a number, both edits of a
                                // position, else one control and 0
  std::array<const char*, 2> labels = {};     // in the dialog
  std::span<const char* const> entries = {};  // of a list
  bool randomizable = true;
  bool storedInPreset = true;  // and set to its default by Reset
  bool updatesPreview = true;
};

// In the order of validation, of script writing and of preset files.
// clang-format off
inline constexpr auto effectTable = std::to_array<ParameterFacts>({
    {.name = "Origin", .kind = ParameterKind::position, .defaults = {0.5, 0.5},
     .help = "Where the light stands, also outside the picture.",
     .minimum = 0.0, .maximum = 1.0, .bound = Bound::none,
     .keys = {{{"ORIX", "origin x", "1.0 is rightmost pixel"},
               {"ORIY", "origin y", "1.0 is lowest pixel"}}},
     .controls = {1031, 1032}, .labels = {"x-position", "y-position"}},
    {.name = "Intensity", .kind = ParameterKind::number, .defaults = {2.0},
     .help = "How bright the rays are.",
     .minimum = 0.0, .maximum = 5.0, .bound = Bound::lower,
     .keys = {{{"INTE", "intensity", "image multiplier"}}},
     .controls = {1013, 1011}, .labels = {"intensity"}},
    {.name = "RayLength", .kind = ParameterKind::number, .defaults = {1.0},
     .help = "How long the streaks are that the light draws out of the picture.",
     .minimum = 0.0, .maximum = 1.0, .bound = Bound::both,
     .keys = {{{"RALE", "ray length", "ray length"}}},
     .controls = {1028, 1025}, .labels = {"length"}},
    {.name = "Radius", .kind = ParameterKind::number, .defaults = {2.0},
     .help = "How far the light reaches, in diagonals of the picture.",
     .minimum = 0.0, .maximum = 5.0, .bound = Bound::lower,
     .keys = {{{"RADI", "radius", "effect radius"}}},
     .controls = {1030, 1027}, .labels = {"radius"}},
    {.name = "Contrast", .kind = ParameterKind::number, .defaults = {0.0},
     .help = "Strengthens the rays and lifts the dark between them.",
     .minimum = 0.0, .maximum = 2.0, .bound = Bound::lower,
     .keys = {{{"CONT", "contrast", "takes effect before blending"}}},
     .controls = {1039, 1038}, .labels = {"contrast"}},
    {.name = "GammaCorrection", .kind = ParameterKind::number, .defaults = {1.0},
     .help = "Brightens the middle tones of the rays, below 1 it darkens them.",
     .minimum = 0.0, .maximum = 3.0, .bound = Bound::lower,
     .keys = {{{"GAMA", "gamma correction", "takes effect before blending"}}},
     .controls = {1066, 1064}, .labels = {"gamma"}},
    {.name = "ColorBalance", .kind = ParameterKind::number, .defaults = {0.0},
     .help = "Tints the rays more with the low color (below 0) or the high color.",
     .minimum = -1.0, .maximum = 1.0, .bound = Bound::both,
     .keys = {{{"COBA", "color balance", "color bias"}}},
     .controls = {1034, 1033}, .labels = {"balance"}},
    {.name = "UseImageColor", .kind = ParameterKind::boolean, .defaults = {1.0},
     .help = "Rays have the colors of the picture; without it they are white.",
     .minimum = 0.0, .maximum = 1.0, .bound = Bound::none,
     .keys = {{{"IMCO", "use image colors", "use image colors"}}},
     .controls = {1076}, .labels = {"use image colors"},
     .randomizable = false},
    {.name = "Hue", .kind = ParameterKind::number, .defaults = {0.0},
     .help = "Turns the colors of the rays around the color circle.",
     .minimum = -1.0, .maximum = 1.0, .bound = Bound::both,
     .keys = {{{"HSLH", "hue", "takes effect before blending"}}},
     .controls = {1014, 1012}, .labels = {"hue"}},
    {.name = "Saturation", .kind = ParameterKind::number, .defaults = {0.0},
     .help = "Makes the colors of the rays richer, below 0 duller.",
     .minimum = -1.0, .maximum = 1.0, .bound = Bound::both,
     .keys = {{{"HSLS", "saturation", "takes effect before blending"}}},
     .controls = {1017, 1016}, .labels = {"saturation"}},
    {.name = "Lightness", .kind = ParameterKind::number, .defaults = {0.0},
     .help = "Makes the rays lighter, below 0 darker.",
     .minimum = -1.0, .maximum = 1.0, .bound = Bound::both,
     .keys = {{{"HSLL", "lightness", "takes effect before blending"}}},
     .controls = {1019, 1018}, .labels = {"lightness"}},
    {.name = "SelectionLow", .kind = ParameterKind::number, .defaults = {0.0},
     .help = "Only what is at least this light shines.",
     .minimum = 0.0, .maximum = 255.0, .bound = Bound::both,
     .keys = {{{"SELL", "selection low", "lower grayscale selection"}}},
     .controls = {1067, 1065}, .labels = {"low"}},
    {.name = "SelectionHigh", .kind = ParameterKind::number, .defaults = {255.0},
     .help = "Only what is at most this light shines.",
     .minimum = 0.0, .maximum = 255.0, .bound = Bound::both,
     .keys = {{{"SELH", "selection high", "upper grayscale selection"}}},
     .controls = {1021, 1020}, .labels = {"high"}},
    {.name = "SelectionSoften", .kind = ParameterKind::number, .defaults = {0.0},
     .help = "Lets the selection fade in and out; at 0 its edge is hard.",
     .minimum = 0.0, .maximum = 3.0, .bound = Bound::both,
     .keys = {{{"SELS", "selection soften", "Selection Soften based on Climax"}}},
     .controls = {1023, 1022}, .labels = {"soften"}},
    {.name = "SelectionClimax", .kind = ParameterKind::number, .defaults = {1.0},
     .help = "Where a soft selection is strongest: -1 at low, 0 in the middle, 1 at high.",
     .minimum = -1.0, .maximum = 1.0, .bound = Bound::both,
     .keys = {{{"SELC", "selection climax", "Peak intensity when softened"}}},
     .controls = {1026, 1024}, .labels = {"climax"}},
    {.name = "ColorLow", .kind = ParameterKind::color, .defaults = {1.0, 1.0, 1.0},
     .help = "The tint of faint rays.",
     .minimum = 0.0, .maximum = 1.0, .bound = Bound::both,
     .keys = {{{"COLR", "low color red", "low intensity color"},
               {"COLG", "low color green", "low intensity color"},
               {"COLB", "low color blue", "low intensity color"}}},
     .controls = {1036}, .labels = {"low color"}},
    {.name = "ColorHigh", .kind = ParameterKind::color, .defaults = {1.0, 1.0, 1.0},
     .help = "The tint of bright rays.",
     .minimum = 0.0, .maximum = 1.0, .bound = Bound::both,
     .keys = {{{"COHR", "high color red", "high intensity color"},
               {"COHG", "high color green", "high intensity color"},
               {"COHB", "high color blue", "high intensity color"}}},
     .controls = {1037}, .labels = {"high color"}},
    {.name = "Mode", .kind = ParameterKind::list, .defaults = {1.0},
     .help = "Straight rays are fine streaks, smooth ones a soft glow.",
     .minimum = 1.0, .maximum = 2.0, .bound = Bound::both,
     .keys = {{{"MODE", "mode", "radiashafts mode"}}},
     .controls = {1035}, .labels = {"mode"},
     .entries = rayModeNames},
    {.name = "BlendMode", .kind = ParameterKind::list, .defaults = {3.0},
     .help = "How the rays are laid over the picture.",
     .minimum = 1.0, .maximum = blendModeNames.size(), .bound = Bound::both,
     .keys = {{{"BLND", "blend mode", "transfer mode"}}},
     .controls = {1009}, .labels = {"blend"},
     .entries = blendModeNames, .randomizable = false},
    {.name = "SelectionShow", .kind = ParameterKind::list, .defaults = {1.0},
     .help = "Shows the finished picture, or the parts of it that shine.",
     .minimum = 1.0, .maximum = 3.0, .bound = Bound::both,
     .keys = {{{"SHOW", "show mode", "what to see"}}},
     .controls = {1029}, .labels = {"show"},
     .entries = selectionShowNames, .randomizable = false},
    {.name = "Randomize", .kind = ParameterKind::number, .defaults = {0.05},
     .help = "How far \"randomize\" moves the values.",
     .minimum = 0.0, .maximum = 1.0, .bound = Bound::lower,
     .controls = {1069, 1068},
     .randomizable = false, .storedInPreset = false, .updatesPreview = false},
    {.name = "Randomize Button", .kind = ParameterKind::boolean, .defaults = {0.0},
     .help = "Moves most values by chance, as far as the slider says.",
     .minimum = 0.0, .maximum = 1.0, .bound = Bound::none,
     .controls = {1040}, .labels = {"randomize"},
     .randomizable = false, .storedInPreset = false, .updatesPreview = false},
});
// clang-format on

static_assert(std::all_of(effectTable.begin(), effectTable.end(),
                          [](const ParameterFacts& facts) { return facts.help != nullptr; }));

// The script key as a number of the host's descriptors; 0 for none.
constexpr std::uint32_t scriptKey(const ScriptTerm& term) {
  const char* text = term.code;
  if (text == nullptr) return 0;
  return hostapi::fourCharacterCode({text[0], text[1], text[2], text[3], '\0'});
}

constexpr int valueCount(ParameterKind kind) {
  return kind == ParameterKind::position ? 2 : kind == ParameterKind::color ? 3 : 1;
}

}  // namespace radiashafts
