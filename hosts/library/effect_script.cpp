#include "hosts/library/effect_script.h"

#include <algorithm>

namespace radiashafts::hosts {
namespace {

standin::ScriptValue scriptValue(const ParameterFacts& facts, double number) {
  switch (facts.kind) {
    case ParameterKind::boolean:
      return number != 0.0;
    case ParameterKind::list:
      return static_cast<std::int32_t>(number);
    default:
      return number;
  }
}

}  // namespace

void addTo(standin::Script& script, const ParameterFacts& facts, const ParameterNumbers& numbers) {
  for (std::size_t k = 0; k < facts.keys.size() && facts.keys[k].code != nullptr; ++k) {
    script.emplace_back(scriptKey(facts.keys[k]), scriptValue(facts, numbers[k]));
  }
}

void setIn(standin::Script& script, const ParameterFacts& facts, const ParameterNumbers& numbers) {
  for (const ScriptTerm& term : facts.keys) {
    if (term.code == nullptr) continue;
    std::erase_if(script, [&term](const auto& entry) { return entry.first == scriptKey(term); });
  }
  addTo(script, facts, numbers);
}

standin::Script scriptOf(const EffectParameters& effect) {
  standin::Script script;
  for (std::size_t i = 0; i < effectTable.size(); ++i) {
    addTo(script, effectTable[i], NumbersOf(*effect.all[i]));
  }
  return script;
}

void apply(const standin::Script& script, EffectParameters& effect) {
  for (std::size_t i = 0; i < effectTable.size(); ++i) {
    ParameterNumbers numbers = NumbersOf(*effect.all[i]);
    for (const auto& [key, value] : script) {
      for (std::size_t k = 0; k < numbers.size(); ++k) {
        const bool isIts =
            effectTable[i].keys[k].code != nullptr && scriptKey(effectTable[i].keys[k]) == key;
        if (isIts)
          numbers[k] = std::visit([](auto number) { return static_cast<double>(number); }, value);
      }
    }
    SetNumbers(*effect.all[i], numbers);
  }
}

void setOrigin(standin::Script& script, double x, double y) {
  const auto origin = std::find_if(effectTable.begin(), effectTable.end(), [](const auto& facts) {
    return facts.kind == ParameterKind::position;
  });
  setIn(script, *origin, {x, y});
}

}  // namespace radiashafts::hosts
