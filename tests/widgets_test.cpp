// What the controls, the mouse and the colour choosers do to the parameters and their history.

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <sstream>
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
    asked = Channels{*red, *green, *blue};
    if (answer) std::tie(*red, *green, *blue) = std::tuple_cat(*answer);
    return answer.has_value();
  }
  std::optional<Channels> asked, answer;
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
    windows.boxes = {{1036, {10, 10, 30, 20}}, {1037, {10, 40, 30, 50}}};
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
  void leave() { editing.OnEditKillFocus(std::exchange(panel.focus, 0)); }
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
  double number(int id) { return of<pfParameterFloat>(id).value(); }
  std::vector<ParameterNumbers> values() {
    std::vector<ParameterNumbers> values;
    const auto& all = filter.parameters.all();
    for (std::size_t i = 0; i < all.size(); ++i) {
      values.push_back(NumbersOf(*all[i], effectTable[i]));
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
    const bool open = facts.bound != Bound::both;
    for (const auto& [text, value] : {std::pair{"-1e4", facts.minimum},
                                      {"1234.5", open ? 1234.5 : facts.maximum},
                                      {" 0.1234567", 0.1234567}}) {
      e.type(edit, text);
      EXPECT_EQ(e.number(edit), value);
      EXPECT_EQ(e.panel.texts[edit], text);
      EXPECT_EQ(e.panel.numbers[slider], std::lround(value * 100));
    }
    e.panel.focus = slider;  // on to the slider, which stands at 12
    e.editing.OnEditKillFocus(edit);
    EXPECT_EQ(e.number(edit), 0.1234567);
    for (const char* half : {"-", "nan", "1e999", "0,1", "+-1", "7 ", "1e"}) e.type(edit, half);
    EXPECT_EQ(e.panel.texts[edit], "1e");
    e.leave();
    EXPECT_EQ(e.panel.texts[edit], "0.123457");
    e.editing.OnEditKillFocus(edit);  // a text that nobody touched says six digits of it
    EXPECT_EQ(e.number(edit), 0.1234567);
    e.panel.slid.clear();
    e.slide(slider, {50});
    EXPECT_EQ(e.panel.texts[edit], "0.5");
    EXPECT_EQ(e.panel.slid, "");  // a thumb in the hand is left alone
  }
}

TEST(Widgets, ShowTheirParametersAndTakeWhatIsChosen) {
  Editor e;
  const std::pair<int, const char*> cases[] = {{1011, "0..500/50"},
                                               {1033, "-100..100/20"},
                                               {1038, "0..200/20"},
                                               {1065, "0..25500/2550"},
                                               {1066, "1"},
                                               {1031, "200"},
                                               {1029, "normal..selection only"}};
  for (const auto& [id, text] : cases) EXPECT_EQ(e.panel.texts[id], text) << id;
  EXPECT_EQ((std::array{e.panel.numbers[1009], e.panel.numbers[1029], e.panel.numbers[1076]}),
            (std::array{2, 0, 1}));
  auto* widget = FindWidgetByControl(1011, e.filter.*&Editor::Inside::widgets);
  widget->enabled = widget->visible = false;
  widget->Update();
  EXPECT_TRUE(!e.panel.enabled[1011] && !e.panel.shown[1013]);
  auto& flag = e.of<pfParameterBool>(1076);
  e.set(1076, 2);  // neither
  EXPECT_TRUE(flag.value());
  e.set(1076, 0);
  EXPECT_FALSE(flag.value());
  for (const auto& [selected, value] : {std::pair{0, 1}, {22, 23}, {23, 23}, {-1, 23}, {4, 5}}) {
    e.set(1009, selected);
    EXPECT_EQ(e.of<pfParameterList>(1009).value(), value);
  }
}

TEST(Editing, EveryActionIsOneStepOfTheHistoryThatUndoesAndRedoes) {
  constexpr Point onSwatch{30, 50}, inPreview{100, 100};
  constexpr Channels white{1.0, 1.0, 1.0};
  const auto slide = [](Editor& e, auto... positions) { e.slide(1011, {positions...}); };
  const auto pick = [](Editor& e, std::optional<Channels> answer, Point at) {
    e.chooser->answer = answer;
    e.editing.OnInterfaceLeftDown(at);
    e.editing.OnInterfaceLeftUp();
  };
  struct {
    const char* name;
    int steps, records;
    bool rendered;
    std::function<void(Editor&)> act;
  } const cases[] = {{"slider", 1, 1, true, [&](Editor& e) { slide(e, 200, 150, 120, 333); }},
                     {"slider at rest", 0, 0, false, [&](Editor& e) { slide(e, 200, 200); }},
                     {"keys", 5, 5, true,
                      [](Editor& e) {
                        for (const char* text : {"1", "1.", "1.2", "1.2e", "1.2e2"})
                          e.type(1013, text);
                        for (const char* text : {"0.1", "0."}) e.type(1013, text);
                      }},
                     {"same colour", 1, 1, false, [&](Editor& e) { pick(e, white, onSwatch); }},
                     {"colour", 1, 1, true, [&](Editor& e) { pick(e, Channels(), onSwatch); }},
                     {"drag", 1, 1, true,
                      [&](Editor& e) {
                        e.pointer.OnLeftDown(inPreview);
                        for (int x = 90; x > -20; x -= 5) e.pointer.OnMove({x, 333});
                        e.pointer.OnLeftUp();
                        e.pointer.OnMove({200, 200});
                        EXPECT_LT(e.of<pfParameterPosition>(1031).x(), 0.0);
                      }},
                     {"pipette", 1, 1, true,
                      [&](Editor& e) {
                        e.editing.OnSwatchRightUp({10, 40});
                        for (const std::uint8_t v : {51, 102, 51}) {
                          e.windows.onScreen = {v, 255, 0};
                          e.pointer.OnMove(inPreview);
                        }
                        e.windows.onScreen.reset();  // off the screen
                        e.pointer.OnMove(inPreview);
                        e.pointer.OnLeftDown(inPreview);  // ends it and leaves the light
                        e.pointer.OnMove({7, 7});
                        e.pointer.OnLeftUp();
                        e.windows.onScreen = {9, 9, 9};
                        e.pointer.OnMove(inPreview);
                        EXPECT_EQ(e.of<pfParameterRGB>(1037).value(), (Channels{0.2, 1.0, 0.0}));
                      }},
                     {"reset", 2, 21, true,
                      [](Editor& e) {
                        const auto defaults = e.values();
                        e.set(1035, 1);
                        e.editing.Reset();
                        EXPECT_EQ(e.values(), defaults);
                      }},
                     {"randomize", 1, 17, true, [](Editor& e) { e.set(1040, 0); }}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Editor e;
    const auto& history = e.filter.undoHistory;
    const auto before = e.values();
    c.act(e);
    EXPECT_EQ(history.nGroup, c.steps);
    EXPECT_EQ(history.nCurrent, c.records);
    EXPECT_EQ(bRenderPending, c.rendered);
    EXPECT_TRUE(e.windows.dialogs && !e.windows.captured && !e.windows.pipette);
    e.editing.OnInterfaceLeftUp();
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

TEST(PreviewPointer, TellsThePlaceAndPansWithTheHand) {
  Editor e;
  e.pointer.OnMove({173, 319});
  EXPECT_EQ(e.windows.caption, "Preview:  x: 123 y: 299");
  e.view.AssignScaleFactor(3);  // 133 x 100 in the middle
  e.pointer.OnMove({183 + 7, 120 - 9});
  EXPECT_EQ(e.windows.caption, "Preview:  x: 21 y: -27");
  e.view.AssignScaleFactor(-1);  // twice as large as the picture
  const auto pan = [&](Point from, Point to) {
    e.pointer.OnRightDown(from);
    e.pointer.OnMove(to);
    e.pointer.OnRightUp();
    e.pointer.OnMove({0, 0});
    e.view.limitPan();
    return std::array{e.view.geometry().pan.x, e.view.geometry().pan.y};
  };
  pan({0, 0}, {499, 339});
  EXPECT_EQ(pan({499, 0}, {0, 0})[0], 150);  // and not 249
  EXPECT_EQ(pan({0, 0}, {100, 60}), (std::array{100, 130}));
  EXPECT_EQ(pan({100, 60}, {80, 20}), (std::array{110, 110}));
  EXPECT_EQ(pan({501, 20}, {0, 0}), (std::array{110, 110}));  // outside the frame
}

TEST(Swatches, AreGreyForGoodOnAGreyPicture) {
  Editor e(hostapi::modeGrayScale);
  auto& low = e.of<pfParameterRGB>(1036);
  low.SetValue(1.0, 0.5, 0.0);
  EXPECT_EQ(e.editing.swatches()[0].color, (std::array{145, 145, 145}));
  EXPECT_NEAR(low.value()[2], 0.568762609, 1e-12);
  const int painted = e.panel.invalidated[1036];
  low.SetValue(std::nan(""), 9.0, 0.0);
  EXPECT_EQ(e.editing.swatches()[0].color[0], 0);
  EXPECT_EQ(e.panel.invalidated[1036], painted + 1);  // and not once more by being painted
}

hostapi::ColorServicesInfo askedOfHost;
hostapi::OSErr hostCode;

// The host's components, or those of the system's chooser, or what went in.
TEST(RequestColor, TakesTheHostsComponentsOrTheSystemsBytes) {
  constexpr double byte = 0.00392156862745098;
  const Channels in{1.0, 1e300, std::nan("")};  // components 255, 255, 0
  constexpr double greyOfIn = (255 * 0.292687786 + 255 * 0.552149646) * byte;
  constexpr double greyOfAnswer = (255 * 0.292687786 + 51 * 0.155162568) * byte;
  struct {
    int mode;
    bool host;
    int code;
    std::optional<Channels> out;  // none for what went in
  } const cases[] = {{3, true, 0, Channels{1.0, 0.0, 0.2}},
                     {3, true, -128, {}},
                     {1, true, 0, Channels{greyOfAnswer, greyOfAnswer, greyOfAnswer}},
                     {10, true, 0, Channels{1.0, 0.0, 0.2}},
                     {3, false, 0, Channels{1.0, 0.0, 0.2}},
                     // The system's chooser answers past the components, which keep what went in.
                     {1, false, 0, Channels{greyOfIn, greyOfIn, greyOfIn}},
                     {1, false, -128, {}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "mode " << c.mode << " code " << c.code << c.host);
    Editor e(c.mode);
    hostCode = static_cast<hostapi::OSErr>(c.code);
    if (c.host) {
      e.record.colorServices = [](hostapi::ColorServicesInfo* info) {
        askedOfHost = *info;
        info->colorComponents[1] = 0;
        info->colorComponents[2] = 51;
        return hostCode;
      };
    }
    if (c.code == 0) e.chooser->answer = Channels{1.0, 0.0, 0.2};
    Channels color = in;
    EXPECT_EQ(e.filter.RequestColor(&e.record, &color[0], &color[1], &color[2]), c.code == 0);
    for (std::size_t i = 0; c.out && i < 3; ++i) EXPECT_NEAR(color[i], (*c.out)[i], 1e-15);
    EXPECT_TRUE(c.out || color[1] == in[1]);
    EXPECT_EQ(e.chooser->asked.has_value(), !c.host);
    if (!c.host) continue;
    EXPECT_EQ(
        std::tuple(askedOfHost.infoSize, askedOfHost.selector, askedOfHost.sourceSpace,
                   askedOfHost.resultSpace, std::to_array(askedOfHost.colorComponents)),
        std::tuple(56, 0, c.mode == 3 ? 0 : 4, 0, std::to_array<std::int16_t>({255, 255, 0, 0})));
  }
}

}  // namespace
}  // namespace radiashafts::test
