// What the controls, the mouse and the colour choosers do to the parameters and their history.

#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <sstream>
#include <tuple>

#include <gtest/gtest.h>

#include "frame/pf_filter_radiashafts.h"
#include "parameters/number_text.h"
#include "interface/model/parameter_editing.h"
#include "interface/model/preview_pointer.h"
#include "standin/descriptors.h"
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
  standin::Script values() {
    hostapi::PIDescriptorParameters descriptors{
        0, 0, 0, nullptr, standin::writeDescriptorProcs(), standin::readDescriptorProcs()};
    hostapi::FilterRecord scripted{};
    scripted.descriptorParameters = &descriptors;
    filter.parameters.WriteScriptParams(&scripted);
    standin::Script script = standin::scriptOf(descriptors.descriptor);
    standin::disposeHandle(descriptors.descriptor);
    return script;
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

TEST(NumberText, TakesWholeNumbersOnlyAndShowsSixDigits) {
  for (const char* text : {" \t7", "+7", "7.", "7e0", ".07e2", "0007", "70e-1"}) {
    EXPECT_EQ(parseNumber(text), 7.0) << text;
  }
  for (const char* text : {"", " ", "1e", "7 ", "+", "+-7", "1,5", "nan", "1e999", "1x", "- 1"}) {
    EXPECT_EQ(parseNumber(text), std::nullopt) << text;
  }
  EXPECT_EQ(numberText(1.0 / 3) + " " + numberText(-0.25) + " " + numberText(1234567.0),
            "0.333333 -0.25 1.23457e+06");
}

TEST(NumberWidget, LimitsWhatIsTypedAndRewritesItOnlyWhenTheEditLosesTheFocus) {
  Editor e;
  int numbers = 0;
  for (const ParameterFacts& facts : effectTable) {
    if (facts.kind != ParameterKind::number) continue;
    SCOPED_TRACE(facts.name);
    ++numbers;
    const auto [edit, slider] = facts.controls;
    const bool open = facts.bound != Bound::both;
    for (const auto& [text, value] : {std::pair{"-1e4", facts.minimum},
                                      {"1234.5", open ? 1234.5 : facts.maximum},
                                      {" 0.13", 0.13}}) {
      e.panel.slid.clear();
      e.type(edit, text);
      EXPECT_EQ(e.number(edit), value) << text;
      EXPECT_EQ(e.panel.texts[edit], text);
      EXPECT_EQ(e.panel.numbers[slider], std::lround(value * 100));
    }
    EXPECT_EQ(e.panel.slid, "113 13! -87 13! ");
    const int steps = e.filter.undoHistory.nGroup;
    for (const char* half : {"1e", "", "-", "0.13"}) {
      e.type(edit, half);
      EXPECT_EQ(e.panel.texts[edit], half);
    }
    e.type(edit, "1e");
    e.leave();
    EXPECT_EQ(e.panel.texts[edit], "0.13");
    EXPECT_EQ(e.number(edit), 0.13);
    EXPECT_EQ(e.filter.undoHistory.nGroup, steps);

    e.panel.slid.clear();
    e.slide(slider, {50});
    EXPECT_EQ(e.number(edit), 0.5);
    EXPECT_EQ(e.panel.texts[edit], "0.5");
    EXPECT_EQ(e.panel.slid, "");  // a thumb in the hand is left alone
    e.panel.focus = 1;
    e.panel.numbers[slider] = 70;  // what has no focus says nothing
    e.panel.texts[edit] = "0.9";
    EXPECT_FALSE(e.editing.OnControlChange(slider, true));
    EXPECT_EQ(e.number(edit), 0.5);
  }
  EXPECT_EQ(numbers, 14);
  e.type(1028, "0.123");
  e.panel.focus = 1025;  // on to the slider, which stands at 12
  e.editing.OnEditKillFocus(1028);
  EXPECT_EQ(e.number(1028), 0.123);
}

TEST(Widgets, SetUpTheirControlsAndFollowTheirState) {
  Editor e;
  const std::pair<int, const char*> cases[] = {{1011, "0..500/50"},
                                               {1033, "-100..100/20"},
                                               {1065, "0..25500/2550"},
                                               {1064, "0..300/30"},
                                               {1066, "1"},
                                               {1021, "255"},
                                               {1031, "200"},
                                               {1032, "150"},
                                               {1035, "straight..smooth"},
                                               {1029, "normal..selection only"}};
  for (const auto& [id, text] : cases) {
    EXPECT_EQ(e.panel.texts[id], text) << id;
  }
  EXPECT_EQ((std::array{e.panel.numbers[1009], e.panel.numbers[1029], e.panel.numbers[1076]}),
            (std::array{2, 0, 1}));
  for (const int id : {1011, 1031, 1076, 1009}) {
    auto* widget = FindWidgetByControl(id, e.filter.*&Editor::Inside::widgets);
    const int before = e.panel.invalidated[id];
    widget->enabled = false;
    widget->visible = false;
    widget->Update();
    EXPECT_TRUE(!e.panel.enabled[id] && !e.panel.shown[id] && e.panel.invalidated[id] > before);
  }
  pfParameterFloat point;  // both ends the same
  point.maximum = 0.0;
  pfParameterUIFloat widget({5001, 5002});
  AttachWidget(widget, point);
  widget.Open(&e.panel);
  EXPECT_EQ(e.panel.texts[5002], "0..0/1");
}

TEST(PositionWidget, KeepsTheTextThatMeansItsValueAndWritesWholePixelsElse) {
  Editor e;
  auto& origin = e.of<pfParameterPosition>(1031);
  const std::pair<const char*, double> cases[] = {
      {"33.5", 33.5 / 400}, {"33.5x", 33.5 / 400}, {"-80", -0.2}, {"1e3", 2.5}, {"", 2.5},
      {"7.25", 7.25 / 400}};
  for (const auto& [text, x] : cases) {
    e.type(1031, text);
    EXPECT_EQ(origin.value(), (std::array{x, 0.5})) << text;
    EXPECT_EQ(e.panel.texts[1031], text);
  }
  e.type(1032, "99.5");
  e.panel.focus = 0;
  EXPECT_EQ(e.panel.texts[1031], "7.25");
  EXPECT_EQ(e.filter.undoHistory.nGroup, 5);
  origin.SetValue(0.999, -0.999);
  EXPECT_EQ(e.panel.texts[1031] + " " + e.panel.texts[1032], "399 -299");
  e.editing.Undo();
  EXPECT_EQ(origin.value(), (std::array{7.25 / 400, 0.5}));
  EXPECT_EQ(e.panel.texts[1031] + " " + e.panel.texts[1032], "7 150");
}

TEST(ChoiceWidgets, TakeAFocusedCheckAndAnyEntryOfTheList) {
  Editor e;
  auto& flag = e.of<pfParameterBool>(1076);
  e.set(1076, 2);  // neither
  EXPECT_TRUE(flag.value());
  e.set(1076, 0);
  EXPECT_FALSE(flag.value());
  e.panel.focus = 0;
  e.panel.numbers[1076] = 1;
  EXPECT_FALSE(e.editing.OnControlChange(1076, true) || flag.value());
  auto& list = e.of<pfParameterList>(1009);
  const std::pair<int, int> cases[] = {{0, 1}, {22, 23}, {23, 23}, {-1, 23}, {4, 5}};
  for (const auto& [selected, value] : cases) {
    e.set(1009, selected);
    EXPECT_EQ(list.value(), value);
  }
  EXPECT_FALSE(e.editing.OnControlChange(4711, true));
}

TEST(Editing, EveryActionIsOneStepOfTheHistoryThatUndoesAndRedoes) {
  constexpr Point onSwatch{30, 50}, beside{31, 50}, inPreview{100, 100};
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
  } const cases[] = {
      {"slider", 1, 1, true, [&](Editor& e) { slide(e, 200, 150, 120, 333); }},
      {"two drags", 2, 2, true, [&](Editor& e) { slide(e, 9, 8), slide(e, 3, 2); }},
      {"slider at rest", 0, 0, false, [&](Editor& e) { slide(e, 200, 200); }},
      {"keys", 5, 5, true,
       [](Editor& e) {
         for (const char* text : {"1", "1.", "1.2", "1.2e", "1.2e2"}) e.type(1013, text);
         for (const char* text : {"0.1", "0."}) e.type(1013, text);
       }},
      {"not previewed", 0, 0, false, [](Editor& e) { e.type(1069, "0.7"); }},
      {"check", 1, 1, true, [](Editor& e) { e.set(1076, 0); }},
      {"entry", 1, 1, true, [](Editor& e) { e.set(1035, 1), e.set(1035, 1); }},
      {"same colour", 1, 1, false, [&](Editor& e) { pick(e, white, onSwatch); }},
      {"colour", 1, 1, true, [&](Editor& e) { pick(e, Channels(), onSwatch); }},
      {"cancelled", 0, 0, false, [&](Editor& e) { pick(e, {}, onSwatch); }},
      {"beside", 0, 0, false, [&](Editor& e) { pick(e, Channels(), beside); }},
      {"press", 1, 1, true, [&](Editor& e) { e.pointer.OnLeftDown(inPreview); }},
      {"drag", 1, 1, true,
       [&](Editor& e) {
         e.pointer.OnLeftDown(inPreview);
         for (int x = 90; x > -20; x -= 5) e.pointer.OnMove({x, 333});
         e.pointer.OnLeftUp();
         e.pointer.OnMove({200, 200});
       }},
      {"pan", 0, 0, false,
       [&](Editor& e) {
         e.pointer.OnRightDown(inPreview);
         e.pointer.OnMove({0, 0});
         e.pointer.OnRightUp();
       }},
      {"pipette put back", 1, 1, false,
       [&](Editor& e) {
         e.editing.OnSwatchRightUp(onSwatch);
         EXPECT_TRUE(e.windows.pipette);
         e.editing.OnInterfaceLeftUp();
         e.windows.onScreen = {1, 2, 3};
         e.pointer.OnMove(inPreview);
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
      {"pipette beside", 0, 0, false, [&](Editor& e) { e.editing.OnSwatchRightUp(beside); }},
      {"reset", 1, 20, true, [](Editor& e) { e.editing.Reset(); }},
      {"randomize", 1, 17, true, [](Editor& e) { e.set(1040, 0); }}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    Editor e;
    const auto& history = e.filter.undoHistory;
    const standin::Script before = e.values();
    c.act(e);
    EXPECT_EQ(history.nGroup, c.steps);
    EXPECT_EQ(history.nCurrent, c.records);
    EXPECT_EQ(bRenderPending, c.rendered);
    EXPECT_TRUE(e.windows.dialogs && (e.windows.captured == (c.name == std::string("press"))));
    EXPECT_FALSE(e.windows.pipette);
    e.editing.OnInterfaceLeftUp();
    const standin::Script after = e.values();
    for (int i = 0; i < c.steps; ++i) {
      EXPECT_EQ(e.windows.buttons, i == 0 ? "undo" : "undoredo");
      e.editing.Undo();
    }
    bRenderPending = false;
    e.editing.Undo();  // nothing is left
    EXPECT_FALSE(bRenderPending);
    EXPECT_EQ(e.windows.buttons, c.steps > 0 ? "redo" : "");
    EXPECT_TRUE(e.values() == before || c.name == std::string("not previewed"));
    for (int i = 0; i < c.steps; ++i) e.editing.Redo();
    EXPECT_EQ(bRenderPending, c.steps > 0);
    EXPECT_EQ(e.values(), after);
  }
}

TEST(PreviewPointer, TellsThePlaceAndPansWithTheHand) {
  Editor e;
  e.pointer.OnMove({50, 20});  // the picture's corner
  EXPECT_EQ(e.windows.caption, "Preview:  x: 0 y: 0");
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
    const Point at = e.view.geometry().pan;
    return std::array{at.x, at.y};
  };
  pan({0, 0}, {499, 339});
  EXPECT_EQ(pan({499, 0}, {0, 0})[0], 150);  // and not 249
  EXPECT_EQ(pan({0, 0}, {100, 60}), (std::array{100, 130}));
  EXPECT_EQ(pan({100, 60}, {80, 20}), (std::array{110, 110}));
  EXPECT_EQ(pan({501, 20}, {0, 0}), (std::array{110, 110}));  // outside the frame
}

TEST(Swatches, AreGreyForGoodOnAGreyPicture) {
  for (const auto& [mode, grey] : {std::pair{1, true}, {10, true}, {17, false}, {3, false}}) {
    Editor e(mode);
    auto& low = e.of<pfParameterRGB>(1036);
    low.SetValue(1.0, 0.5, 0.0);
    e.editing.swatches();
    const auto shown = e.editing.swatches();
    ASSERT_EQ(shown.size(), 2U);
    EXPECT_EQ(shown[0].color, grey ? (std::array{145, 145, 145}) : (std::array{255, 127, 0}));
    EXPECT_NEAR(low.value()[2], grey ? 0.568762609 : 0.0, 1e-12);
    const int painted = e.panel.invalidated[1036];
    low.SetValue(std::nan(""), 9.0, 0.0);
    EXPECT_EQ(e.editing.swatches()[0].color[0], 0);
    EXPECT_EQ(e.panel.invalidated[1036], painted + 1);  // and not once more by being painted
  }
}

hostapi::ColorServicesInfo askedOfHost, answerOfHost;
hostapi::OSErr hostCode;
hostapi::OSErr hostsPicker(hostapi::ColorServicesInfo* info) {
  askedOfHost = *info;
  for (int i = 0; i < 3; ++i) info->colorComponents[i] = answerOfHost.colorComponents[i];
  return hostCode;
}

// All but the padding.
auto membersOf(const hostapi::ColorServicesInfo& info) {
  return std::tuple(info.infoSize, info.selector, info.sourceSpace, info.resultSpace,
                    info.resultGamutInfoValid, info.resultInGamut, info.reservedSourceSpaceInfo,
                    info.reservedResultSpaceInfo, std::to_array(info.colorComponents),
                    info.reserved, info.selectorParameter);
}

TEST(RequestColor, TakesTheHostsComponentsOrTheSystemsBytes) {
  constexpr double byte = 0.00392156862745098;
  const Channels in{1.0, 0.999, 0.3};  // components 255, 254, 76
  const double greyOfIn = (255 * 0.292687786 + 76 * 0.155162568 + 254 * 0.552149646) * byte;
  struct {
    int mode;
    bool host;
    int code;
    std::array<int, 3> answer;
    Channels out;
    int space;
  } const cases[] = {{3, true, 0, {255, 254, 0}, {1.0, 254 * byte, 0.0}, 0},
                     {3, true, -128, {1, 2, 3}, in, 0},
                     {16, true, 0, {5, 6, 7}, {5 * byte, 6 * byte, 7 * byte}, 0},
                     {1, true, 0, {255, 0, 0}, {0.292687786, 0.292687786, 0.292687786}, 4},
                     {1, true, -128, {255, 0, 0}, in, 4},
                     {10, true, 0, {255, 0, 0}, {1.0, 0.0, 0.0}, 4},
                     {17, true, 0, {255, 0, 0}, {1.0, 0.0, 0.0}, 0},
                     {3, false, 0, {255, 51, 0}, {1.0, 51 * byte, 0.0}, 0},
                     {3, false, -128, {255, 51, 0}, in, 0},
                     // The system's chooser answers past the components, which keep what went in.
                     {1, false, 0, {255, 51, 0}, {greyOfIn, greyOfIn, greyOfIn}, 0},
                     {1, false, -128, {255, 51, 0}, in, 0},
                     {10, false, 0, {255, 51, 0}, {1.0, 51 * byte, 0.0}, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message() << "mode " << c.mode << " code " << c.code << c.host);
    Editor e(c.mode);
    askedOfHost = {};
    hostCode = static_cast<hostapi::OSErr>(c.code);
    Channels chosen;
    for (std::size_t i = 0; i < 3; ++i) {
      answerOfHost.colorComponents[i] = static_cast<std::int16_t>(c.answer[i]);
      chosen[i] = c.answer[i] * byte;
    }
    if (c.host) e.record.colorServices = hostsPicker;
    if (c.code == 0) e.chooser->answer = chosen;
    Channels color = in;
    EXPECT_EQ(e.filter.RequestColor(&e.record, &color[0], &color[1], &color[2]), c.code == 0);
    for (std::size_t i = 0; i < 3; ++i) EXPECT_DOUBLE_EQ(color[i], c.out[i]);
    EXPECT_EQ(e.chooser->asked.has_value(), !c.host);
    if (!c.host) continue;
    hostapi::ColorServicesInfo asked{};
    asked.infoSize = 56;
    asked.sourceSpace = static_cast<std::int16_t>(c.space);
    asked.colorComponents[0] = 255;
    asked.colorComponents[1] = 254;
    asked.colorComponents[2] = 76;
    EXPECT_EQ(membersOf(askedOfHost), membersOf(asked));
  }
  Editor e;
  e.record.colorServices = hostsPicker;
  Channels odd{std::nan(""), 1e300, -4.0};
  e.filter.RequestColor(&e.record, &odd[0], &odd[1], &odd[2]);
  EXPECT_EQ(askedOfHost.colorComponents[0], 0);
  EXPECT_EQ(askedOfHost.colorComponents[1], 255);
  EXPECT_EQ(askedOfHost.colorComponents[2], 0);
}

}  // namespace
}  // namespace radiashafts::test
