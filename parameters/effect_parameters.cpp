#include "parameters/effect_parameters.h"

#include "parameters/undo.h"
#include "parameters/visit_parameter.h"

namespace radiashafts {
namespace {

template <std::size_t N>
void setKeys(std::array<std::uint32_t, N>& keys, const ParameterFacts& facts) {
  for (std::size_t i = 0; i < N; ++i) keys[i] = scriptKey(facts.keys[i]);
}

void setUp(pfParameter& parameter, const ParameterFacts& facts) {
  parameter.SetName(facts.name);
  parameter.randomizable = facts.randomizable;
  parameter.storedInPreset = facts.storedInPreset;
  parameter.updatesPreview = facts.updatesPreview;
  visitParameter(parameter,
                 ParameterVisitor{[&](pfParameterPosition& p) { setKeys(p.keys, facts); },
                                  [&](pfParameterRGB& p) { setKeys(p.keys, facts); },
                                  [&](ScalarParameter& p) { p.key = scriptKey(facts.keys[0]); }});
  visitParameter(parameter, ParameterVisitor{[&](pfParameterFloat& number) {
                                               number.minimum = facts.minimum;
                                               number.maximum = facts.maximum;
                                               number.useMinimum = facts.bound != Bound::none;
                                               number.useMaximum = facts.bound == Bound::both;
                                             },
                                             [&](pfParameterList& list) {
                                               for (const char* entry : facts.entries) {
                                                 list.AddEntry(entry);
                                               }
                                             },
                                             [](pfParameter&) {}});
}

}  // namespace

EffectParameters::EffectParameters() {
  for (std::size_t i = 0; i < all.size(); ++i) {
    setUp(*all[i], effectTable[i]);
    SetNumbers(*all[i], effectTable[i].defaults);
  }
}

void EffectParameters::Reset(UndoHistory* history) {
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (!effectTable[i].storedInPreset) continue;
    if (history != nullptr) history->Push(all[i]->CreateUndo());
    SetNumbers(*all[i], effectTable[i].defaults);
  }
  if (history != nullptr) ++history->nGroup;
}

ParameterNumbers NumbersOf(const pfParameter& parameter) {
  ParameterNumbers numbers{};
  visitParameter(parameter,
                 ParameterVisitor{[&](const pfParameterPosition& position) {
                                    numbers = {position.x(), position.y()};
                                  },
                                  [&](const pfParameterRGB& color) { numbers = color.value(); },
                                  [&](const auto& scalar) {
                                    numbers[0] = static_cast<double>(scalar.value());
                                  }});
  return numbers;
}

void SetNumbers(pfParameter& parameter, const ParameterNumbers& numbers) {
  visitParameter(
      parameter,
      ParameterVisitor{[&](pfParameterPosition& p) { p.SetValue(numbers[0], numbers[1]); },
                       [&](pfParameterRGB& p) { p.SetValue(numbers[0], numbers[1], numbers[2]); },
                       [&](pfParameterBool& p) { p.SetValue(numbers[0] != 0.0); },
                       [&](auto& p) {
                         using Value = typename std::decay_t<decltype(p)>::Value;
                         p.SetValue(static_cast<Value>(numbers[0]));
                       }});
}

}  // namespace radiashafts
