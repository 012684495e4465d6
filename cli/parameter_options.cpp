#include "cli/parameter_options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iomanip>
#include <optional>
#include <sstream>
#include <stdexcept>

#include <CLI/CLI.hpp>

#include "cli/help_text.h"
#include "hosts/library/effect_script.h"
#include "hosts/library/suggestion.h"
#include "parameters/hyphenated_name.h"
#include "parameters/number_text.h"
#include "parameters/parameter_text.h"

namespace radiashafts::cli {
namespace {

struct InvalidValue : std::runtime_error {
  using std::runtime_error::runtime_error;
};

double numberIn(std::string_view text) {
  if (const auto value = parseNumber(text)) return *value;
  throw InvalidValue("'" + std::string(text) + "' is no number");
}

ParameterNumbers parseNumbers(const std::string& text, int count) {
  ParameterNumbers numbers{};
  std::string_view rest = text;
  for (int i = 0; i < count; ++i) {
    const std::size_t comma = rest.find(',');
    if ((comma == std::string_view::npos) != (i == count - 1)) {
      throw InvalidValue("'" + text + "' is not " + std::to_string(count) +
                         " numbers with commas between them");
    }
    numbers[static_cast<std::size_t>(i)] = numberIn(rest.substr(0, comma));
    if (comma != std::string_view::npos) rest.remove_prefix(comma + 1);
  }
  return numbers;
}

double parseSwitch(const std::string& text) {
  if (text == "on" || text == "true" || text == "yes" || text == "1") return 1.0;
  if (text == "off" || text == "false" || text == "no" || text == "0") return 0.0;
  throw InvalidValue("'" + text + "' is neither on nor off");
}

double parseEntry(const std::string& text, const ParameterFacts& facts) {
  const auto entry = std::find(facts.entries.begin(), facts.entries.end(), text);
  if (entry != facts.entries.end()) {
    return static_cast<double>(entry - facts.entries.begin() + 1);
  }
  int number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < 1 ||
      number > static_cast<int>(facts.entries.size())) {
    const std::string near = hosts::suggestion(text, {facts.entries.begin(), facts.entries.end()});
    throw InvalidValue("'" + text + "' is none of its entries" +
                       (near.empty() ? "; --list-parameters tells them" : near));
  }
  return number;
}

// "#ffcc00" as painting programs write it.
std::optional<ParameterNumbers> parseHexColor(std::string_view text) {
  if (text.size() != 7 || text[0] != '#') return std::nullopt;
  ParameterNumbers color{};
  for (std::size_t i = 0; i < color.size(); ++i) {
    const char* const digits = text.data() + 1 + 2 * i;
    std::uint8_t byte = 0;
    const auto [end, error] = std::from_chars(digits, digits + 2, byte, 16);
    if (error != std::errc() || end != digits + 2) return std::nullopt;
    color[i] = byte / 255.0;
  }
  return color;
}

ParameterNumbers parseValue(const std::string& text, const ParameterFacts& facts) {
  switch (facts.kind) {
    case ParameterKind::boolean:
      return {parseSwitch(text)};
    case ParameterKind::list:
      return {parseEntry(text, facts)};
    case ParameterKind::color:
      if (const auto color = parseHexColor(text)) return *color;
      return parseNumbers(text, valueCount(facts.kind));
    default:
      return parseNumbers(text, valueCount(facts.kind));
  }
}

std::string valueForm(const ParameterFacts& facts) {
  switch (facts.kind) {
    case ParameterKind::position:
      return "X,Y[px]";
    case ParameterKind::color:
      return "R,G,B|#HEX";
    case ParameterKind::boolean:
      return "on|off";
    case ParameterKind::list:
      return "NAME";
    default:
      return "NUMBER";
  }
}

std::string textOf(const ParameterFacts&, bool value) {
  return value ? "on" : "off";
}
std::string textOf(const ParameterFacts& facts, std::int32_t value) {
  const bool known = value >= 1 && value <= static_cast<std::int32_t>(facts.entries.size());
  return known ? facts.entries[static_cast<std::size_t>(value) - 1] : std::to_string(value);
}
// The shortest text that parses back to the same number.
std::string textOf(const ParameterFacts&, double value) {
  char text[32];
  const auto result = std::to_chars(text, text + sizeof text, value);
  return std::string(text, result.ptr);
}

}  // namespace

bool hasOption(const ParameterFacts& facts) {
  return facts.keys[0].code != nullptr;
}

std::string optionName(const ParameterFacts& facts) {
  return "--" + hyphenatedName(facts.name);
}

std::vector<std::string> clampingNotes(const std::string& name, const ParameterFacts& facts,
                                       const ParameterNumbers& numbers) {
  std::vector<std::string> notes;
  if (facts.bound == Bound::none) return notes;
  for (std::size_t k = 0; k < static_cast<std::size_t>(valueCount(facts.kind)); ++k) {
    const double clamped =
        std::max(facts.bound == Bound::both ? std::min(numbers[k], facts.maximum) : numbers[k],
                 facts.minimum);
    if (clamped == numbers[k]) continue;
    notes.push_back(name + ": " + numberText(numbers[k]) +
                    " lies outside its range and is taken as " + numberText(clamped));
  }
  return notes;
}

ParameterOptions::ParameterOptions(CLI::App& app) {
  for (std::size_t i = 0; i < effectTable.size(); ++i) {
    const ParameterFacts& facts = effectTable[i];
    if (!hasOption(facts)) continue;
    Value& value = values_[i];
    const auto parse = [this, &facts, &value](const CLI::results_t& texts) {
      try {
        const bool isInPixels =
            facts.kind == ParameterKind::position && texts.back().ends_with("px");
        if (isInPixels) {
          const std::string text = texts.back().substr(0, texts.back().size() - 2);
          const ParameterNumbers numbers = parseNumbers(text, valueCount(facts.kind));
          originInPixels_ = {numbers[0], numbers[1]};
          return true;
        }
        value = {true, parseValue(texts.back(), facts)};
      } catch (const InvalidValue& error) {
        throw CLI::ValidationError(optionName(facts), error.what());
      }
      return true;
    };
    const std::string help =
        std::string(facts.help) + " (" + rangeText(facts) + "; default " + defaultText(facts) + ")";
    app.add_option(optionName(facts), parse, help)
        ->type_name(valueForm(facts))
        ->expected(1)
        ->group(groupOf(facts));
  }
}

standin::Script ParameterOptions::script() const {
  standin::Script script;
  for (std::size_t i = 0; i < effectTable.size(); ++i) {
    if (values_[i].given) hosts::addTo(script, effectTable[i], values_[i].numbers);
  }
  return script;
}

void ParameterOptions::applyTo(EffectParameters& effect) const {
  for (std::size_t i = 0; i < effectTable.size(); ++i) {
    if (values_[i].given) SetNumbers(*effect.all[i], values_[i].numbers);
  }
}

std::vector<std::string> ParameterOptions::notes() const {
  std::vector<std::string> notes;
  for (std::size_t i = 0; i < effectTable.size(); ++i) {
    const ParameterFacts& facts = effectTable[i];
    if (!values_[i].given) continue;
    const auto own = clampingNotes(optionName(facts), facts, values_[i].numbers);
    notes.insert(notes.end(), own.begin(), own.end());
  }
  return notes;
}

bool ParameterOptions::isGiven(std::size_t parameter) const {
  const bool isOrigin = effectTable[parameter].kind == ParameterKind::position;
  return values_[parameter].given || (isOrigin && originInPixels_.has_value());
}

std::string parameterEntries(const CLI::Option& option) {
  std::string entries;
  for (const ParameterFacts& facts : effectTable) {
    if (!hasOption(facts) || !option.check_name(optionName(facts))) continue;
    for (const char* entry : facts.entries) {
      if (!entries.empty()) entries += '|';
      entries += entry;
    }
  }
  return entries;
}

void printScript(std::ostream& out, const standin::Script& script) {
  for (const ParameterFacts& facts : effectTable) {
    std::string text;
    for (const ScriptTerm& term : facts.keys) {
      const auto value = std::find_if(script.begin(), script.end(), [&term](const auto& entry) {
        return term.code != nullptr && entry.first == scriptKey(term);
      });
      if (value == script.end()) continue;
      if (!text.empty()) text += ',';
      text += std::visit([&facts](auto number) { return textOf(facts, number); }, value->second);
    }
    if (!text.empty()) out << optionName(facts) << ' ' << text << '\n';
  }
  out.flush();
}

std::string optionsOf(const standin::Script& script) {
  std::ostringstream lines;
  printScript(lines, script);
  std::string text = lines.str();
  std::replace(text.begin(), text.end(), '\n', ' ');
  if (!text.empty()) text.pop_back();
  return text;
}

void listParameters(std::ostream& out) {
  for (const ParameterFacts& facts : effectTable) {
    if (!hasOption(facts)) continue;
    out << std::left << std::setw(19) << optionName(facts) << "default " << std::setw(8)
        << defaultText(facts) << "  " << rangeText(facts) << '\n';
  }
}

}  // namespace radiashafts::cli
