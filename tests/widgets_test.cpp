// What the controls, the mouse and the colour choosers do to the parameters and their history.

#include <array>
#include <cmath>
#include <functional>
#include <set>
#include <tuple>

#include <gtest/gtest.h>

#include "frame/pf_filter_radiashafts.h"
#include "interface/model/parameter_editing.h"
#include "interface/model/preview_pointer.h"
#include "tests/support/fake_interface.h"

namespace radiashafts::test {
namespace {

using Channels = std::array<double, 3>;

// The system's colour chooser with its answer; none for Cancel.
struct FakePreview final : pfPreview {
  bool Show(EditedFilter*, hostapi::FilterRecord*, WidgetList*) override { return false; }
  void RequestRender() override { render(); }
  bool AlternativeColorSelection(hostapi::FilterRecord*, double* red, double* green,
                                 double* blue) override {
    if (answer) std::tie(*red, *green, *blue) = std::tuple_cat(*answer);
    return answer.has_value();
  }
  std::optional<Channels> answer;
  std::function<void()> render;
};

// The real filter, open in an interface of fakes. The picture is 400 x 300 and shown as a whole.
struct Editor {
  struct Inside : pfFilter {
    using pfFilter::preview, pfFilter::widgets;
  };
  explicit Editor(int imageMode = hostapi::modeRGB) {
    chooser->render = [this] { view.RequestRender(); };
    (filter.*(&Inside::preview)).reset(chooser);
    record.imageSize = {300, 400};
    record.imageMode = static_cast<std::int16_t>(imageMode);
    record.planes = 3;
    record.advanceState = [] { return hostapi::OSErr{0}; };
    windows.frame = {500, 340};
    view.open(&filter, &record);
    view.FitScaleToFrame();
    panel.textChanged = [this](int id) { editing.OnControlChange(id, true); };
    editing.open(&(filter.*&Inside::widgets), &panel);
    filter.undoHistory.bEnabled = true;
    bRenderPending = false;
  }
  ~Editor() {
    editing.close();
    view.close();
    bRenderPending = false;
  }

  void type(int id, const std::string& text) {
    panel.focus = id;
    panel.texts[id] = text;
    editing.OnControlChange(id, true);
  }
  void slide(int id, std::initializer_list<int> positions) {
    panel.focus = id;
    for (const int position : positions) {
      panel.numbers[id] = position;
      editing.OnScroll(id, false);
    }
    editing.OnScroll(id, true);
  }
  void set(int id, int number) {
    panel.focus = id;
    panel.numbers[id] = number;
    editing.OnControlChange(id, true);
  }
  template <class Parameter>
  Parameter& of(int id) {
    return static_cast<Parameter&>(*FindWidgetByControl(id, filter.*&Inside::widgets)->parameter);
  }
  // In the table's order.
  std::vector<double> values() {
    std::vector<double> values;
    const auto& all = filter.parameters.all();
    for (std::size_t i = 0; i < all.size(); ++i) {
      const ParameterNumbers held = NumbersOf(*all[i]);
      values.insert(values.end(), held.begin(), held.begin() + valueCount(effectTable[i].kind));
    }
    return values;
  }

  FakePreview* chooser = new FakePreview;
  pfFilterRadiashafts filter;
  hostapi::FilterRecord record{};
  FakePanel panel;
  FakeWindows windows;
  PreviewView view{windows};
  ParameterEditing editing{windows, view};
  PreviewPointer pointer{windows, view, editing};
};

TEST(NumberWidget, LimitsWhatIsTypedAndRewritesItOnlyWhenTheEditLosesTheFocus) {
  Editor e;
  for (const ParameterFacts& facts : effectTable) {
    if (facts.kind != ParameterKind::number) continue;
    SCOPED_TRACE(facts.name);
    const auto [edit, slider] = facts.controls;
    const auto& number = e.of<pfParameterFloat>(edit);
    const bool open = facts.bound != Bound::both;
    for (const auto& [text, value] : {std::pair{"-1e4", facts.minimum},
                                      {"1234.5", open ? 1234.5 : facts.maximum},
                                      {" 0.1234567", 0.1234567}}) {
      e.type(edit, text);
      EXPECT_EQ(number.value(), value);
      EXPECT_EQ(e.panel.texts[edit], text);
      EXPECT_EQ(e.panel.numbers[slider], std::lround(value * 100));
    }
    e.panel.focus = slider;  // on to the slider, which stands at 12
    e.editing.OnEditKillFocus(edit);
    EXPECT_EQ(number.value(), 0.1234567);
    for (const char* half : {"-", "nan", "1e999", "0,1", "+-1", "7 ", "1e"}) e.type(edit, half);
    EXPECT_EQ(e.panel.texts[edit], "1e");
    e.panel.focus = 0;
    e.editing.OnEditKillFocus(edit);
    EXPECT_EQ(e.panel.texts[edit], "0.123457");
    e.editing.OnEditKillFocus(edit);  // a text that nobody touched says six digits of it
    EXPECT_EQ(number.value(), 0.1234567);
    e.slide(slider, {50});
    EXPECT_EQ(e.panel.texts[edit], "0.5");
    e.panel.focus = edit;  // the wheel over the slider
    e.panel.numbers[slider] = 60;
    e.editing.OnScroll(slider, true);
    EXPECT_EQ(e.panel.texts[edit], "0.6");
  }
  e.type(1031, "here");
  e.editing.OnEditKillFocus(1031);
  EXPECT_EQ(e.panel.texts[1031], "200");
}

TEST(Editing, EveryActionIsOneStepOfTheHistoryThatUndoesAndRedoes) {
  constexpr Point inPreview{100, 100};
  constexpr Channels white{1.0, 1.0, 1.0};
  const auto slide = [](Editor& e, auto... positions) { e.slide(1011, {positions...}); };
  const auto pick = [](Editor& e, std::optional<Channels> answer) {
    e.chooser->answer = answer;
    e.editing.OpenColorChooser(1037);
  };
  struct {
    const char* name;
    int steps;
    bool rendered;
    std::function<void(Editor&)> act;
  } const cases[] = {{"slider", 1, true, [&](Editor& e) { slide(e, 200, 150, 120, 333); }},
                     {"another slider before the first one rests", 2, true,
                      [&](Editor& e) {
                        e.panel.focus = 1011;
                        e.panel.numbers[1011] = 150;
                        e.editing.OnScroll(1011, false);
                        e.slide(1064, {50, 60});
                      }},
                     {"slider at rest", 0, false, [&](Editor& e) { slide(e, 200, 200); }},
                     {"keys", 2, true,
                      [](Editor& e) {
                        for (const char* text : {"1", "1.", "1.2"}) e.type(1013, text);
                      }},
                     {"same colour", 1, false, [&](Editor& e) { pick(e, white); }},
                     {"colour", 1, true, [&](Editor& e) { pick(e, Channels()); }},
                     {"drag", 1, true,
                      [&](Editor& e) {
                        e.pointer.OnLeftDown(inPreview);
                        for (int x = 90; x > -20; x -= 5) e.pointer.OnMove({x, 333});
                        e.pointer.OnLeftUp();
                        e.pointer.OnMove({200, 200});
                        EXPECT_LT(e.of<pfParameterPosition>(1031).x(), 0.0);
                      }},
                     {"arrow keys", 1, true,
                      [](Editor& e) {
                        for (int i = 0; i < 3; ++i) e.pointer.moveLight({0, -10}, i == 0);
                        EXPECT_LT(e.of<pfParameterPosition>(1031).y(), 0.5);
                      }},
                     {"pipette", 1, true,
                      [&](Editor& e) {
                        e.editing.ActivatePipette(1037);
                        for (const std::uint8_t v : {51, 102, 51}) {
                          e.windows.onScreen = {v, 255, 0};
                          e.pointer.OnMove(inPreview);
                        }
                        e.pointer.OnLeftDown(inPreview);  // ends it and leaves the light
                        e.pointer.OnMove({7, 7});
                        e.pointer.OnLeftUp();
                        EXPECT_EQ(e.of<pfParameterRGB>(1037).value(), (Channels{0.2, 1.0, 0.0}));
                      }},
                     {"steps of a number that is held, and of a place", 3, true,
                      [](Editor& e) {
                        e.panel.focus = 1028;
                        e.editing.OnStep(1028, 10, true);  // it is at its limit
                        e.editing.OnStep(1028, -1, true);
                        e.editing.OnStep(1028, -10, false);
                        EXPECT_EQ(e.panel.texts[1028] + e.panel.texts[1031], "0.89200");
                        e.editing.OnStep(1021, -1, true);
                        for (const int steps : {-10, 1, 1})
                          e.editing.OnStep(1031, steps, steps < 0);
                        EXPECT_EQ(e.panel.texts[1021] + e.panel.texts[1031], "254192");
                      }},
                     {"double click on a label", 2, true,
                      [](Editor& e) {
                        const auto defaults = e.values();
                        e.slide(1011, {50});
                        e.editing.ResetParameter(1013);
                        e.editing.ResetParameter(1013);
                        EXPECT_EQ(e.values(), defaults);
                      }},
                     {"reset", 2, true, [](Editor& e) {
                        const auto defaults = e.values();
                        e.set(1035, 1);
                        e.editing.Reset();
                        EXPECT_EQ(e.values(), defaults);
                      }}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Editor e;
    const auto before = e.values();
    c.act(e);
    EXPECT_EQ(e.filter.undoHistory.nGroup, c.steps);
    EXPECT_EQ(bRenderPending, c.rendered);
    EXPECT_TRUE(e.windows.dialogs && !e.windows.captured && !e.windows.pipette);
    const auto after = e.values();
    for (int i = 0; i < c.steps; ++i) {
      EXPECT_EQ(e.windows.buttons, i == 0 ? "undo" : "undoredo");
      e.editing.Undo();
    }
    bRenderPending = false;
    e.editing.Undo();  // nothing is left
    EXPECT_FALSE(bRenderPending);
    EXPECT_EQ(e.windows.buttons, c.steps > 0 ? "redo" : "");
    EXPECT_EQ(e.values(), before);
    for (int i = 0; i < c.steps; ++i) e.editing.Redo();
    EXPECT_EQ(bRenderPending, c.steps > 0);
    EXPECT_EQ(e.values(), after);
  }
}

TEST(Editing, TheCursorTellsWhatAPressWillDo) {
  Editor e;
  const auto& origin = e.of<pfParameterPosition>(1031);
  const Point light = e.view.geometry().handle(origin.x(), origin.y());
  const auto at = [&](int x) { return e.pointer.cursorAt({light.x + x, light.y - x}, true); };
  EXPECT_TRUE(at(11) == PreviewCursor::openHand && at(12) == PreviewCursor::cross);
  EXPECT_EQ(e.pointer.cursorAt(light, false), PreviewCursor::cross);
  e.windows.dots = 144;
  EXPECT_TRUE(at(17) == PreviewCursor::openHand && at(18) == PreviewCursor::cross);
  e.pointer.OnLeftDown({70, 33});
  EXPECT_EQ(at(90), PreviewCursor::closedHand);
  e.editing.ActivatePipette(1037);
  EXPECT_EQ(at(90), PreviewCursor::pipette);
}

TEST(Editing, EscapeTakesADragOfTheLightBack) {
  Editor e;
  const auto before = e.values();
  e.pointer.OnLeftDown({70, 33});
  e.pointer.OnMove({90, 33});
  EXPECT_TRUE(e.pointer.takeBackDrag());
  e.pointer.OnMove({20, 20});
  EXPECT_EQ(e.values(), before);
  EXPECT_FALSE(e.windows.captured || e.pointer.takeBackDrag());
}

// The rest is the user's own. The millisecond is the seed, so most presses repeat the one before.
TEST(RandomizeButton, MovesTheOtherSeventeenWithinTheAmountAsOneStepOfTheHistory) {
  Editor e;
  const UndoHistory& history = e.filter.undoHistory;
  auto& amount = e.of<pfParameterFloat>(1069);
  amount.SetValue(0.0);
  const double mode = e.values()[22];
  e.set(1040, 0);
  EXPECT_EQ(e.values()[22], mode);  // by no amount
  e.editing.Undo();
  amount.SetValue(0.9);
  const auto before = e.values();
  std::set<std::size_t> moved;
  for (int press = 0; press < 100000 && moved.size() < 22; ++press) {
    e.set(1040, 0);
    const auto now = e.values();
    for (std::size_t i = 0; i < now.size(); ++i) {
      if (now[i] != before[i]) moved.insert(i);
    }
    ASSERT_LE(std::abs(now[9]), 0.9);  // half the amount of its range of 2
    ASSERT_EQ(history.nCurrent, 17);
    e.editing.Undo();
    ASSERT_EQ(e.values(), before);
  }
  EXPECT_EQ(moved, (std::set<std::size_t>{0,  1,  2,  3,  4,  5,  6,  7,  9,  10, 11,
                                          12, 13, 14, 15, 16, 17, 18, 19, 20, 21, 22}));
}

hostapi::OSErr hostCode = 0;

TEST(RequestColor, TakesTheHostsComponentsOrTheSystemsBytes) {
  const auto choose = [](hostapi::ColorServicesInfo* info) {
    EXPECT_EQ(info->colorComponents[1], 255);
    info->colorComponents[1] = 0;
    info->colorComponents[2] = 51;
    return hostCode;
  };
  const auto requested = [](Editor& e) {
    Channels color{1.0, 1e300, 0.0};
    e.chooser->answer = Channels{1.0, 0.0, 0.2};
    e.filter.RequestColor(&e.record, &color[0], &color[1], &color[2]);
    return color;
  };
  Editor rgb, grey(hostapi::modeGrayScale);
  // The system's chooser answers past the components, which keep what went in.
  EXPECT_NEAR(requested(grey)[2], 0.292687786 + 0.552149646, 1e-15);
  rgb.record.colorServices = grey.record.colorServices = choose;
  EXPECT_NEAR(requested(rgb)[2], 0.2, 1e-15);
  EXPECT_NEAR(requested(grey)[2], 0.292687786 + 0.2 * 0.155162568, 1e-15);
  hostCode = hostapi::userCanceledError;
  EXPECT_EQ(requested(rgb)[1], 1e300);
}

}  // namespace
}  // namespace radiashafts::test
