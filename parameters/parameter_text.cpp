#include "parameters/parameter_text.h"

#include <string_view>

#include "parameters/number_text.h"

namespace radiashafts {

const char* groupOf(const ParameterFacts& facts) {
  const std::string_view name = facts.name;
  if (name.starts_with("Selection")) return selectionGroup;
  const bool isColor = name.find("Color") != std::string_view::npos || name == "Hue" ||
                       name == "Saturation" || name == "Lightness";
  return isColor ? colorGroup : lightGroup;
}

std::string defaultText(const ParameterFacts& facts) {
  if (facts.kind == ParameterKind::boolean) return facts.defaults[0] != 0.0 ? "on" : "off";
  if (facts.kind == ParameterKind::list) {
    return facts.entries[static_cast<std::size_t>(facts.defaults[0]) - 1];
  }
  std::string text;
  for (int i = 0; i < valueCount(facts.kind); ++i) {
    if (i > 0) text += ',';
    text += numberText(facts.defaults[static_cast<std::size_t>(i)]);
  }
  return text;
}

std::string rangeText(const ParameterFacts& facts) {
  switch (facts.kind) {
    case ParameterKind::position:
      return "0 to 1 inside the picture";
    case ParameterKind::boolean:
      return "on, off";
    case ParameterKind::list: {
      std::string text;
      for (const char* entry : facts.entries) {
        if (!text.empty()) text += ", ";
        text += entry;
      }
      return text;
    }
    default:
      if (facts.bound == Bound::lower) {
        return "from " + numberText(facts.minimum) + ", " + numberText(facts.maximum) + " is a lot";
      }
      return numberText(facts.minimum) + " to " + numberText(facts.maximum);
  }
}

}  // namespace radiashafts
