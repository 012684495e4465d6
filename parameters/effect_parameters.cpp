#include "parameters/effect_parameters.h"

#include "parameters/undo.h"

namespace radiashafts {
namespace {

void setUp(pfParameter& parameter, const ParameterFacts& facts) {
  parameter.SetName(facts.name);
  parameter.randomizable = facts.randomizable;
  parameter.storedInPreset = facts.storedInPreset;
  parameter.updatesPreview = facts.updatesPreview;
  switch (facts.kind) {
    case ParameterKind::position: {
      auto& position = static_cast<pfParameterPosition&>(parameter);
      for (std::size_t i = 0; i < 2; ++i) position.keys[i] = scriptKey(facts.keys[i]);
      break;
    }
    case ParameterKind::color: {
      auto& color = static_cast<pfParameterRGB&>(parameter);
      for (std::size_t i = 0; i < 3; ++i) color.keys[i] = scriptKey(facts.keys[i]);
      break;
    }
    case ParameterKind::number: {
      auto& number = static_cast<pfParameterFloat&>(parameter);
      number.minimum = facts.minimum;
      number.maximum = facts.maximum;
      number.useMinimum = facts.bound != Bound::none;
      number.useMaximum = facts.bound == Bound::both;
      number.key = scriptKey(facts.keys[0]);
      break;
    }
    case ParameterKind::boolean:
      static_cast<pfParameterBool&>(parameter).key = scriptKey(facts.keys[0]);
      break;
    case ParameterKind::list: {
      auto& list = static_cast<pfParameterList&>(parameter);
      for (const char* entry : facts.entries) list.AddEntry(entry);
      list.key = scriptKey(facts.keys[0]);
      break;
    }
  }
}

}  // namespace

EffectParameters::EffectParameters() {
  for (std::size_t i = 0; i < all.size(); ++i) {
    setUp(*all[i], effectTable[i]);
    SetNumbers(*all[i], effectTable[i], effectTable[i].defaults);
  }
}

void EffectParameters::Reset(UndoHistory* history) {
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (!effectTable[i].storedInPreset) continue;
    if (history != nullptr) history->Push(all[i]->CreateUndo());
    SetNumbers(*all[i], effectTable[i], effectTable[i].defaults);
  }
  if (history != nullptr) ++history->nGroup;
}

ParameterNumbers NumbersOf(const pfParameter& parameter, const ParameterFacts& facts) {
  switch (facts.kind) {
    case ParameterKind::position: {
      const auto& v = static_cast<const pfParameterPosition&>(parameter).value();
      return {v[0], v[1]};
    }
    case ParameterKind::color:
      return static_cast<const pfParameterRGB&>(parameter).value();
    case ParameterKind::boolean:
      return {static_cast<const pfParameterBool&>(parameter).value() ? 1.0 : 0.0};
    case ParameterKind::list:
      return {static_cast<double>(static_cast<const pfParameterList&>(parameter).value())};
    default:
      return {static_cast<const pfParameterFloat&>(parameter).value()};
  }
}

void SetNumbers(pfParameter& parameter, const ParameterFacts& facts,
                const ParameterNumbers& numbers) {
  switch (facts.kind) {
    case ParameterKind::position:
      static_cast<pfParameterPosition&>(parameter).SetValue(numbers[0], numbers[1]);
      break;
    case ParameterKind::color:
      static_cast<pfParameterRGB&>(parameter).SetValue(numbers[0], numbers[1], numbers[2]);
      break;
    case ParameterKind::number:
      static_cast<pfParameterFloat&>(parameter).SetValue(numbers[0]);
      break;
    case ParameterKind::boolean:
      static_cast<pfParameterBool&>(parameter).SetValue(numbers[0] != 0.0);
      break;
    case ParameterKind::list:
      static_cast<pfParameterList&>(parameter).SetValue(static_cast<std::int32_t>(numbers[0]));
      break;
  }
}

}  // namespace radiashafts
