// Parameters: what a change does, limits and random steps, and the effect's table as values.

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <functional>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "frame/pf_filter_radiashafts.h"

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
  int updates = 0;
  int changes = 0;
};

using Numbers = std::vector<double>;

Numbers valuesOf(const pfParameter* parameter) {
  if (const auto* p = dynamic_cast<const pfParameterFloat*>(parameter)) return {p->value()};
  if (const auto* p = dynamic_cast<const pfParameterBool*>(parameter)) return {p->value() * 1.0};
  if (const auto* p = dynamic_cast<const pfParameterList*>(parameter)) return {p->value() * 1.0};
  if (const auto* p = dynamic_cast<const pfParameterPosition*>(parameter)) return {p->x(), p->y()};
  const auto& v = dynamic_cast<const pfParameterRGB&>(*parameter).value();
  return {v.begin(), v.end()};
}

// The filter's own collection, as the interface would see it.
struct Inside : pfFilter {
  using pfFilter::parameters;
};
const std::vector<pfParameter*>& parametersOf(pfFilterRadiashafts& filter) {
  return (filter.*&Inside::parameters).all();
}

std::vector<Numbers> allValuesOf(pfFilterRadiashafts& filter) {
  std::vector<Numbers> values;
  for (const pfParameter* parameter : parametersOf(filter)) values.push_back(valuesOf(parameter));
  return values;
}

TEST(Parameter, AChangeNotifiesOnceAndAsksForARenderOnlyWherePreviewed) {
  pfParameterFloat number;
  pfParameterInt whole;
  pfParameterBool flag;
  pfParameterList list;
  for (const char* entry : {"a", "b", "c"}) list.AddEntry(entry);
  pfParameterPosition position;
  pfParameterRGB color;
  const struct {
    const char* name;
    pfParameter& parameter;
    std::function<bool(int)> set;
    int callsBack;
  } cases[] = {
      {"float", number, [&](int v) { return number.SetValue(v); }, 1},
      {"int", whole, [&](int v) { return whole.SetValue(v); }, 0},
      {"bool", flag, [&](int v) { return flag.SetValue(v != 0); }, 1},
      {"list", list, [&](int v) { return list.SetValue(v + 1); }, 1},
      {"position", position, [&](int v) { return position.SetValue(0.0, v); }, 0},
      {"color", color, [&](int v) { return color.SetValue(1.0, 1.0, 1.0 - v); }, 0},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Watch watch(c.parameter);
    EXPECT_TRUE(c.set(1));
    EXPECT_FALSE(c.set(1));
    EXPECT_EQ(watch.updates, 1);
    EXPECT_EQ(watch.changes, 2 * c.callsBack);
    c.parameter.updatesPreview = false;
    EXPECT_FALSE(c.set(0));
    EXPECT_EQ(watch.updates, 2);
    EXPECT_EQ(watch.changes, 3 * c.callsBack);
  }
}

TEST(Parameter, AListRefusesAValueAboveItsCountWithoutATrace) {
  pfParameterList list;
  for (const char* entry : {"a", "b", "c"}) list.AddEntry(entry);
  Watch watch(list);
  EXPECT_FALSE(list.SetValue(4));
  EXPECT_EQ(list.value(), 1);
  EXPECT_EQ(watch.updates + watch.changes, 0);
  EXPECT_TRUE(list.SetValue(0));  // stands until it is validated
  list.Validate();
  EXPECT_EQ(list.value(), 1);
  EXPECT_EQ(list.GetEntry(2), "c");
  EXPECT_EQ(list.GetEntry(3) + list.GetEntry(-1), "");
}

TEST(Parameter, ValidateHoldsOnlyTheEndsThatAreFlagged) {
  for (const bool useMinimum : {false, true}) {
    for (const bool useMaximum : {false, true}) {
      for (const int v : {-9, -2, 1, 3, 9}) {
        const int expected = v < -2 && useMinimum ? -2 : v > 3 && useMaximum ? 3 : v;
        pfParameterFloat number;
        pfParameterInt whole;
        const auto hold = [&](auto& parameter, int callsBack) {
          parameter.minimum = -2;
          parameter.maximum = 3;
          parameter.useMinimum = useMinimum;
          parameter.useMaximum = useMaximum;
          parameter.SetValue(v);
          Watch watch(parameter);
          parameter.Validate();
          EXPECT_EQ(parameter.value(), expected) << v << useMinimum << useMaximum;
          EXPECT_EQ(watch.updates, v != expected);
          EXPECT_EQ(watch.changes, callsBack);  // changed or not
        };
        hold(number, 1);
        hold(whole, 0);
      }
    }
  }
  pfParameterRGB color;
  color.SetValue(1.5, 0.5, -0.1);
  Watch watch(color);
  color.Validate();
  color.Validate();
  EXPECT_EQ(color.value(), (pfParameterRGB::Value{1.0, 0.5, 0.0}));
  EXPECT_EQ(watch.updates, 1);
  EXPECT_EQ(watch.changes, 0);
}

TEST(ReflectInto, FoldsAsATriangleWaveThatNeverReachesItsTop) {
  const struct {
    double t;
    int n;
    double folded;
  } cases[] = {{0.0, 1, 0.0},    {2.5, 1, 0.5},   {1.0, 1, 0.9999}, {2.0, 1, 0.0},
               {3.0, 1, 0.9999}, {-0.25, 1, .25}, {-1.25, 1, 0.75}, {-1.0, 1, 0.9999},
               {-2.0, 1, 0.0},   {7.5, 5, 2.5},   {-7.5, 5, 2.5},   {-12.0, 5, 2.0},
               {5.0, 5, 4.9999}, {10.0, 5, 0.0},  {-5.0, 5, 4.9999}};
  for (const auto& c : cases) EXPECT_NEAR(ReflectInto(c.t, c.n), c.folded, 1e-12) << c.t;

  std::mt19937 random(1);
  for (int i = 0; i < 2000; ++i) {
    const int n = 1 + i % 7;
    const double t = std::uniform_real_distribution<double>(-60.0, 60.0)(random);
    const double phase = t - 2.0 * n * std::floor(t / (2.0 * n));
    ASSERT_NEAR(ReflectInto(t, n), phase <= n ? phase : 2.0 * n - phase, 1e-9) << t << ' ' << n;
  }
}

TEST(Randomize, StepsStayWithinAmountAndRange) {
  std::srand(5);
  pfParameterFloat number;
  number.minimum = -1.0;
  number.maximum = 1.0;
  pfParameterInt whole;
  whole.maximum = 100;
  pfParameterPosition position;
  pfParameterRGB color;
  pfParameterList list;
  for (int i = 0; i < 23; ++i) list.AddEntry("entry");
  double lowest = 1.0, highest = -1.0;
  std::set<std::int32_t> chosen;
  for (int i = 0; i < 500; ++i) {
    number.SetValue(0.3);
    number.Randomize(0.05);
    lowest = std::min(lowest, number.value() - 0.3);
    highest = std::max(highest, number.value() - 0.3);
    whole.SetValue(50);
    whole.Randomize(0.1);
    ASSERT_NEAR(whole.value(), 50, 5);
    position.SetValue(0.5, 0.01);
    position.Randomize(0.05);
    ASSERT_NEAR(position.x(), 0.5, 0.025 + 1e-9);
    ASSERT_TRUE(position.y() >= 0.0 && position.y() <= 0.035 + 1e-9) << position.y();
    color.SetValue(0.5, 0.5, 0.99);
    color.Randomize(9.0);  // taken as 2.0
    for (const double v : color.value()) ASSERT_TRUE(v >= 0.0 && v <= 1.0) << v;
    list.SetValue(12);
    list.Randomize(0.1);
    chosen.insert(list.value());
  }
  EXPECT_NEAR(lowest, -0.05, 0.002);  // half the amount of the range to either side
  EXPECT_NEAR(highest, 0.05, 0.002);
  EXPECT_EQ(chosen, (std::set<std::int32_t>{11, 12, 13}));
}

TEST(Randomize, ItsSpecialAmountsAndLocksHold) {
  pfParameterFloat number;
  number.SetValue(0.7);
  number.Randomize(0.0);
  EXPECT_DOUBLE_EQ(number.value(), 0.7);
  pfParameterList list;
  for (int i = 0; i < 23; ++i) list.AddEntry("entry");
  list.SetValue(12);
  for (int i = 0; i < 20; ++i) list.Randomize(2.1);  // taken as 0.0
  EXPECT_EQ(list.value(), 12);
  pfParameterRGB atCap, aboveCap;
  std::srand(3);
  atCap.Randomize(2.0);
  std::srand(3);
  aboveCap.Randomize(50.0);
  EXPECT_EQ(atCap.value(), aboveCap.value());
  EXPECT_NE(atCap.value(), pfParameterRGB().value());
  for (unsigned seed = 0; seed < 40; ++seed) {
    std::srand(seed);
    const bool even = std::rand() % 2 == 0;
    std::srand(seed);
    pfParameterBool flag;
    flag.Randomize(0.0);
    EXPECT_EQ(flag.value(), even);
    flag.SetValue(true);
    flag.randomizable = number.randomizable = list.randomizable = atCap.randomizable = false;
    for (pfParameter* p : std::initializer_list<pfParameter*>{&flag, &number, &list, &atCap}) {
      const Numbers before = valuesOf(p);
      p->Randomize(1.0);
      EXPECT_EQ(valuesOf(p), before);
    }
  }
}

struct Row {
  const char* name;
  Numbers defaults;
  std::vector<std::string> keys;
  char bound = '-';  // '-' none, 'l' lower, 'b' both
  double minimum = 0.0;
  double maximum = 0.0;
};
const Row table[] = {
    {"Origin", {0.5, 0.5}, {"ORIX", "ORIY"}},
    {"Intensity", {2.0}, {"INTE"}, 'l', 0.0, 5.0},
    {"RayLength", {1.0}, {"RALE"}, 'b', 0.0, 1.0},
    {"Radius", {2.0}, {"RADI"}, 'l', 0.0, 5.0},
    {"Contrast", {0.0}, {"CONT"}, 'l', 0.0, 2.0},
    {"GammaCorrection", {1.0}, {"GAMA"}, 'l', 0.0, 3.0},
    {"ColorBalance", {0.0}, {"COBA"}, 'b', -1.0, 1.0},
    {"UseImageColor", {1.0}, {"IMCO"}},
    {"Hue", {0.0}, {"HSLH"}, 'b', -1.0, 1.0},
    {"Saturation", {0.0}, {"HSLS"}, 'b', -1.0, 1.0},
    {"Lightness", {0.0}, {"HSLL"}, 'b', -1.0, 1.0},
    {"SelectionLow", {0.0}, {"SELL"}, 'b', 0.0, 255.0},
    {"SelectionHigh", {255.0}, {"SELH"}, 'b', 0.0, 255.0},
    {"SelectionSoften", {0.0}, {"SELS"}, 'b', 0.0, 3.0},
    {"SelectionClimax", {1.0}, {"SELC"}, 'b', -1.0, 1.0},
    {"ColorLow", {1.0, 1.0, 1.0}, {"COLR", "COLG", "COLB"}, 'b', 0.0, 1.0},
    {"ColorHigh", {1.0, 1.0, 1.0}, {"COHR", "COHG", "COHB"}, 'b', 0.0, 1.0},
    {"Mode", {1.0}, {"MODE"}, 'b', 1.0, 2.0},
    {"BlendMode", {3.0}, {"BLND"}, 'b', 1.0, 23.0},
    {"SelectionShow", {1.0}, {"SHOW"}, 'b', 1.0, 3.0},
    {"Randomize", {0.05}, {}, 'l', 0.0, 1.0},
    {"Randomize Button", {0.0}, {}},
};

TEST(EffectTable, AFreshFilterHoldsTheNamesKeysDefaultsAndLimits) {
  pfFilterRadiashafts filter;
  const auto& all = parametersOf(filter);
  ASSERT_EQ(all.size(), std::size(table));
  for (std::size_t i = 0; i < all.size(); ++i) {
    const Row& row = table[i];
    SCOPED_TRACE(row.name);
    EXPECT_EQ(all[i]->GetName(), row.name);
    EXPECT_EQ(valuesOf(all[i]), row.defaults);
    EXPECT_EQ(all[i]->storedInPreset, i < 20);
    EXPECT_EQ(all[i]->updatesPreview, i < 20);

    std::vector<std::uint32_t> keys(static_cast<std::size_t>(all[i]->ScriptKeyCount()));
    all[i]->FillScriptKeys(keys.data());
    std::vector<std::string> texts;
    for (const std::uint32_t key : keys) {
      texts.emplace_back();
      for (int shift = 24; shift >= 0; shift -= 8) texts.back() += static_cast<char>(key >> shift);
    }
    EXPECT_EQ(texts, row.keys);

    if (auto* number = dynamic_cast<pfParameterFloat*>(all[i])) {
      EXPECT_EQ(number->minimum, row.minimum);
      EXPECT_EQ(number->maximum, row.maximum);
      number->SetValue(-1000.0);
      number->Validate();
      EXPECT_EQ(number->value(), row.minimum);
      number->SetValue(1000.0);
      number->Validate();
      EXPECT_EQ(number->value(), row.bound == 'b' ? row.maximum : 1000.0);
    } else if (auto* list = dynamic_cast<pfParameterList*>(all[i])) {
      EXPECT_EQ(list->EntryCount(), row.maximum);
    } else if (auto* position = dynamic_cast<pfParameterPosition*>(all[i])) {
      position->SetValue(1.4, -3.0);
      position->Validate();
      EXPECT_EQ(valuesOf(position), (Numbers{1.4, -3.0}));
    }
  }
  auto& blend = dynamic_cast<pfParameterList&>(*all[18]);
  EXPECT_EQ(blend.GetEntry(2) + blend.GetEntry(16) + blend.GetEntry(22),
            "screencolor(none) replace");
}

// Amount, button, blend mode, show mode and the choice of image colours are the user's own.
TEST(RandomizeButton, MovesTheOtherSeventeenAsOneStepOfTheHistory) {
  pfFilterRadiashafts filter;
  const auto& all = parametersOf(filter);
  filter.undoHistory.bEnabled = true;
  auto& button = dynamic_cast<pfParameterBool&>(*all[21]);
  const std::vector<Numbers> before = allValuesOf(filter);
  dynamic_cast<pfParameterFloat&>(*all[20]).SetValue(1.0);
  std::set<std::string> moved;
  for (int press = 0; press < 300 && moved.size() < 17; ++press) {
    button.SetValue(!button.value());
    const std::vector<Numbers> now = allValuesOf(filter);
    for (std::size_t i = 0; i < 20; ++i) {
      if (now[i] != before[i]) moved.insert(all[i]->GetName());
    }
    ASSERT_EQ(now[20], Numbers{1.0});
    ASSERT_EQ(filter.undoHistory.nCurrent, 17);
    ASSERT_TRUE(filter.undoHistory.Undo());
    auto restored = allValuesOf(filter);
    restored.resize(20);
    ASSERT_EQ(restored, (std::vector<Numbers>(before.begin(), before.begin() + 20)));
    std::this_thread::sleep_for(std::chrono::milliseconds(2));  // the clock is the seed
  }
  EXPECT_EQ(moved.size(), 17U);
  for (const char* kept : {"BlendMode", "SelectionShow", "UseImageColor"}) {
    EXPECT_FALSE(moved.contains(kept)) << kept;
  }
}

TEST(ResetParameters, RestoresTwentyDefaultsAndOneUndoTakesThemAllBack) {
  pfFilterRadiashafts filter;
  const auto& all = parametersOf(filter);
  const std::vector<Numbers> defaults = allValuesOf(filter);
  for (pfParameter* p : all) {
    if (auto* number = dynamic_cast<pfParameterFloat*>(p)) number->SetValue(0.25);
    if (auto* list = dynamic_cast<pfParameterList*>(p)) list->SetValue(2);
    if (auto* position = dynamic_cast<pfParameterPosition*>(p)) position->SetValue(0.1, 0.2);
    if (auto* color = dynamic_cast<pfParameterRGB*>(p)) color->SetValue(0.1, 0.2, 0.3);
  }
  dynamic_cast<pfParameterBool&>(*all[7]).SetValue(false);
  const std::vector<Numbers> changed = allValuesOf(filter);
  filter.undoHistory.bEnabled = true;
  filter.ResetParameters(true);
  for (std::size_t i = 0; i < 20; ++i) EXPECT_EQ(valuesOf(all[i]), defaults[i]) << table[i].name;
  EXPECT_EQ(valuesOf(all[20]), Numbers{0.25});
  EXPECT_EQ(filter.undoHistory.nGroup, 1);
  EXPECT_TRUE(filter.undoHistory.Undo());
  EXPECT_EQ(allValuesOf(filter), changed);
  EXPECT_FALSE(filter.undoHistory.CanUndo());
}

TEST(PrepareInterface, HueSaturationAndLightnessAreForColorBelow32Bits) {
  for (int mode = 0; mode <= 17; ++mode) {
    for (const int layerPlanes : {0, 2, 3}) {
      for (const int otherPlanes : {0, 2, 4}) {
        pfFilterRadiashafts filter;
        const auto& all = parametersOf(filter);
        Watch hue(*all[8]), saturation(*all[9]), lightness(*all[10]), intensity(*all[1]);
        hostapi::FilterRecord record{};
        record.imageMode = static_cast<std::int16_t>(mode);
        record.inLayerPlanes = static_cast<std::int16_t>(layerPlanes);
        record.inNonLayerPlanes = static_cast<std::int16_t>(otherPlanes);
        filter.PrepareInterface(&record);
        const bool color =
            (mode == 3 || mode == 7 || mode == 11) && (layerPlanes >= 3 || otherPlanes >= 3);
        for (const Watch* watch : {&hue, &saturation, &lightness}) {
          ASSERT_EQ(watch->enabled, color) << mode << ' ' << layerPlanes << ' ' << otherPlanes;
          ASSERT_EQ(watch->updates, color ? 0 : 1);
        }
        ASSERT_TRUE(intensity.enabled);
      }
    }
  }
}

}  // namespace
}  // namespace radiashafts
