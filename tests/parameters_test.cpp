// Parameters: what a change does, limits and random steps, and the effect's table as values.

#include <cmath>
#include <functional>
#include <random>
#include <set>

#include <gtest/gtest.h>

#include "frame/pf_filter_radiashafts.h"
#include "standin/descriptors.h"

namespace radiashafts {
namespace {

// A widget and a change callback that count.
struct Watch final : pfParameterUI {
  explicit Watch(pfParameter& watched) {
    AttachWidget(*this, watched);
    watched.onChange = [](pfParameter*, void* count) { ++*static_cast<int*>(count); };
    watched.onChangeContext = &changes;
  }
  void Update() override { ++updates; }
  int updates = 0, changes = 0;
};

using Numbers = std::vector<double>;

struct Filter {
  struct Inside : pfFilter {
    using pfFilter::parameters;
  };
  Numbers values() {
    hostapi::PIDescriptorParameters descriptors{
        0, 0, 0, nullptr, standin::writeDescriptorProcs(), standin::readDescriptorProcs()};
    hostapi::FilterRecord record{};
    record.descriptorParameters = &descriptors;
    parameters.WriteScriptParams(&record);
    Numbers numbers;
    for (const auto& [key, value] : standin::scriptOf(descriptors.descriptor)) {
      numbers.push_back(std::visit([](auto v) { return static_cast<double>(v); }, value));
    }
    standin::disposeHandle(descriptors.descriptor);
    return numbers;
  }
  pfFilterRadiashafts filter;
  pfParameters& parameters = filter.*&Inside::parameters;
  const std::vector<pfParameter*>& all = parameters.all();
};

TEST(Parameter, ChangesAndUndoTellWidgetAndCallbackAndAskForARenderOnlyWherePreviewed) {
  pfParameterFloat number;
  pfParameterInt whole;
  pfParameterBool flag;
  pfParameterList list;
  pfParameterPosition position;
  pfParameterRGB color;
  for (const char* entry : {"a", "b"}) list.AddEntry(entry);
  const auto check = [&](const std::function<bool(int)>& set, pfParameter& parameter, int calls) {
    SCOPED_TRACE(typeid(parameter).name());
    Watch watch(parameter);
    EXPECT_TRUE(set(1));
    EXPECT_FALSE(set(1));
    EXPECT_EQ(watch.updates, 1);
    EXPECT_EQ(watch.changes, 2 * calls);  // changed or not
    const auto record = parameter.CreateUndo();
    parameter.updatesPreview = false;
    EXPECT_FALSE(set(0));
    EXPECT_EQ(watch.updates, 2);
    // A record swaps. It tells the widget once more than the change does, but for a position.
    const int more = &parameter == &position ? 0 : 1;
    record->Apply();
    parameter.updatesPreview = true;
    EXPECT_FALSE(set(1));
    record->Apply();
    parameter.CreateUndo()->Apply();
    EXPECT_FALSE(set(0));
    EXPECT_EQ(watch.updates, 4 + 3 * more);
    EXPECT_EQ(watch.changes, 8 * calls);
  };
  check([&](int v) { return number.SetValue(v); }, number, 1);
  check([&](int v) { return whole.SetValue(v); }, whole, 0);
  check([&](int v) { return flag.SetValue(v != 0); }, flag, 1);
  check([&](int v) { return list.SetValue(v + 1); }, list, 1);
  check([&](int v) { return position.SetValue(0.0, v); }, position, 0);
  check([&](int v) { return color.SetValue(1.0, 1.0, 1.0 - v); }, color, 0);
}

TEST(ReflectInto, FoldsAsATriangleWaveThatNeverReachesItsTop) {
  for (const double top : {1.0, -1.0, 3.0, -7.0}) EXPECT_EQ(ReflectInto(top * 5, 5), 4.9999) << top;
  for (const double foot : {0.0, 2.0, -2.0, 6.0}) EXPECT_EQ(ReflectInto(foot * 5, 5), 0.0) << foot;
  std::mt19937 random(1);
  for (int i = 0; i < 2000; ++i) {
    const int n = 1 + i % 7;
    const double t = std::uniform_real_distribution<double>(-60.0, 60.0)(random);
    const double distance = std::abs(t - 2.0 * n * std::round(t / (2.0 * n)));  // to the next foot
    ASSERT_NEAR(ReflectInto(t, n), distance, 1e-9) << t << ' ' << n;
  }
}

TEST(EffectTable, AFreshFilterHasItsNamesDefaultsAndLimits) {
  Filter f;
  EXPECT_EQ(f.values(), (Numbers{0.5, 0.5, 2, 1, 2, 0, 1, 0, 1, 0, 0, 0,    0, 255,
                                 0,   1,   1, 1, 1, 1, 1, 1, 1, 3, 1, 0.05, 0}));
  std::string names;
  Numbers limits;  // of a number: what -1000 and 1000 become, and the slider's end
  for (pfParameter* parameter : f.all) {
    names += parameter->GetName() + (parameter->storedInPreset ? " " : "* ");
    EXPECT_EQ(parameter->storedInPreset, parameter->updatesPreview);
    if (auto* list = dynamic_cast<pfParameterList*>(parameter)) {
      limits.push_back(list->EntryCount());
      EXPECT_FALSE(list->SetValue(list->EntryCount() + 1));
      list->SetValue(0);
      const auto outside = list->CreateUndo();
      list->Validate();
      outside->Apply();  // changes nothing, and keeps the 1
      EXPECT_EQ(list->value(), 1);
      list->SetValue(2);
      outside->Apply();
      EXPECT_EQ(list->value(), 1);
    } else if (auto* number = dynamic_cast<pfParameterFloat*>(parameter)) {
      Watch watch(*number);
      for (const double beyond : {-1000.0, 1000.0}) {
        number->SetValue(beyond);
        number->Validate();
        limits.push_back(number->value());
      }
      limits.push_back(number->maximum);
      EXPECT_EQ(watch.changes, 4);  // by Validate too, changed or not
    }
  }
  EXPECT_EQ(names,
            "Origin Intensity RayLength Radius Contrast GammaCorrection ColorBalance UseImageColor "
            "Hue Saturation Lightness SelectionLow SelectionHigh SelectionSoften SelectionClimax "
            "ColorLow ColorHigh Mode BlendMode SelectionShow Randomize* Randomize Button* ");
  EXPECT_EQ(limits, (Numbers{0,  1000, 5,   0,  1, 1, 0,  1000, 5, 0,  1000, 2, 0, 1000, 3,
                             -1, 1,    1,   -1, 1, 1, -1, 1,    1, -1, 1,    1, 0, 255,  255,
                             0,  255,  255, 0,  3, 3, -1, 1,    1, 2,  23,   3, 0, 1000, 1}));
}

// The rest is the user's own. The millisecond is the seed, so most presses repeat the one before.
TEST(RandomizeButton, MovesTheOtherSeventeenWithinTheAmountAsOneStepOfTheHistory) {
  Filter f;
  f.filter.undoHistory.bEnabled = true;
  static_cast<pfParameterFloat&>(*f.all[20]).SetValue(0.9);
  const Numbers before = f.values();
  std::set<std::size_t> moved;
  for (int press = 0; press < 100000 && moved.size() < 22; ++press) {
    static_cast<pfParameterBool&>(*f.all[21]).SetValue(false);
    const Numbers now = f.values();
    for (std::size_t i = 0; i < now.size(); ++i) {
      if (now[i] != before[i]) moved.insert(i);
    }
    ASSERT_LE(std::abs(now[9]), 0.9);  // half the amount of its range of 2
    ASSERT_EQ(f.filter.undoHistory.nCurrent, 17);
    ASSERT_TRUE(f.filter.undoHistory.Undo());
    ASSERT_EQ(f.values(), before);
  }
  EXPECT_EQ(moved, (std::set<std::size_t>{0,  1,  2,  3,  4,  5,  6,  7,  9,  10, 11,
                                          12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22}));
}

TEST(ResetParameters, RestoresTwentyDefaultsAndOneUndoTakesThemAllBack) {
  Filter f;
  static_cast<pfParameterFloat&>(*f.all[20]).SetValue(1.0);
  static_cast<pfParameterBool&>(*f.all[7]).SetValue(false);
  const Numbers changed = f.values();
  f.filter.undoHistory.bEnabled = true;
  f.filter.ResetParameters(true);
  Numbers expected = Filter().values();
  expected[25] = 1.0;  // the random step's own stays
  EXPECT_EQ(f.values(), expected);
  EXPECT_TRUE(f.filter.undoHistory.Undo());
  EXPECT_EQ(f.values(), changed);
}

}  // namespace
}  // namespace radiashafts
