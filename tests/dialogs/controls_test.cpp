// Every parameter through its control, and the values that come back from the run.

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>

#include "interface/win32/dialog_ids.h"
#include "parameters/effect_parameters.h"
#include "parameters/effect_table.h"
#include "tests/dialogs/dialog_test.h"
#include "tests/dialogs/screen.h"

namespace radiashafts::test {
namespace {

using Options = std::map<std::string, std::string>;

const ParameterFacts& factsOf(const std::string& name) {
  return *std::find_if(effectTable.begin(), effectTable.end(),
                       [&name](const ParameterFacts& facts) { return name == facts.name; });
}

std::vector<const ParameterFacts*> ofKind(ParameterKind kind) {
  std::vector<const ParameterFacts*> found;
  for (const ParameterFacts& facts : effectTable) {
    if (facts.kind == kind) found.push_back(&facts);
  }
  return found;
}

std::string optionOf(const Options& options, const ParameterFacts& facts) {
  std::string name = "--";
  for (const char* c = facts.name; *c != '\0'; ++c) {
    if (std::isupper(*c) != 0 && c != facts.name) name += '-';
    name += static_cast<char>(std::tolower(*c));
  }
  const auto found = options.find(name);
  return found == options.end() ? "no option " + name : found->second;
}

std::array<double, 3> numbersOf(const std::string& text) {
  std::array<double, 3> numbers{};
  std::sscanf(text.c_str(), "%lf,%lf,%lf", &numbers[0], &numbers[1], &numbers[2]);
  return numbers;
}

// A value inside the parameter's range that is not its default, in hundredths.
int hundredthsFor(const ParameterFacts& facts, double part) {
  return static_cast<int>(
      std::lround((facts.minimum + part * (facts.maximum - facts.minimum)) * 100.0));
}

class Controls : public DialogTest {
 protected:
  Controls() : picture_(placesPicture(96, 64)) {}

  void SetUp() override {
    DialogTest::SetUp();
    input_ = writePicture("in.png", picture_);
  }

  std::vector<std::string> arguments(std::vector<std::string> more) const {
    more.insert(more.end(), {"--dialog", input_, path("out.png")});
    return more;
  }

  static Options confirm(HostProgram& host, const DialogDriver& dialogs) {
    click(dialogs.middleOf(IDOK));
    EXPECT_EQ(host.exitCode(), 0) << host.messages();
    return host.options();
  }

  static void expectNumber(const Options& options, const ParameterFacts& facts, double expected) {
    if (facts.keys[0].code == nullptr) return;
    EXPECT_NEAR(numbersOf(optionOf(options, facts))[0], expected, 1e-9) << facts.name;
  }

  static void expectColor(const Options& options, const ParameterFacts& facts, COLORREF expected) {
    const auto channels = numbersOf(optionOf(options, facts));
    EXPECT_NEAR(channels[0] * 255.0, GetRValue(expected), 1e-6) << facts.name;
    EXPECT_NEAR(channels[1] * 255.0, GetGValue(expected), 1e-6) << facts.name;
    EXPECT_NEAR(channels[2] * 255.0, GetBValue(expected), 1e-6) << facts.name;
  }

  standin::Picture picture_;
  std::string input_;
};

TEST_F(Controls, TypedValuesAndTheHostsColorsComeBack) {
  HostProgram host(arguments({"--picked-color", "10,20,30"}));
  DialogDriver dialogs(host.id());
  ASSERT_TRUE(dialogs.isOpen()) << host.messages();
  std::map<std::string, double> typed;
  double part = 0.31;
  for (const ParameterFacts* facts : ofKind(ParameterKind::number)) {
    const double value = typed[facts->name] = hundredthsFor(*facts, part += 0.02) * 0.01;
    char text[32];
    std::snprintf(text, sizeof text, "%g", value);
    dialogs.replaceText(facts->controls[0], text);
    EXPECT_TRUE(eventually([&] {
      return dialogs.sliderPosition(facts->controls[1]) == std::lround(value * 100.0);
    })) << facts->name
        << ' ' << text;
  }
  const ParameterFacts& origin = factsOf("Origin");
  dialogs.replaceText(origin.controls[0], "12");
  dialogs.replaceText(origin.controls[1], "48");
  for (const ParameterFacts* facts : ofKind(ParameterKind::list)) {
    dialogs.takeFocus(facts->controls[0]);
    const int before = dialogs.entry(facts->controls[0]);
    pressKey(VK_DOWN);
    EXPECT_TRUE(eventually([&] { return dialogs.entry(facts->controls[0]) == before + 1; }))
        << facts->name;
  }
  dialogs.clickOn(factsOf("UseImageColor").controls[0]);
  for (const ParameterFacts* facts : ofKind(ParameterKind::color)) {
    dialogs.clickOn(facts->controls[0]);
    EXPECT_TRUE(eventually([&] { return dialogs.swatch(facts->controls[0]) == RGB(10, 20, 30); }))
        << facts->name;
  }
  for (const ParameterFacts* facts : ofKind(ParameterKind::color)) {
    RECT rect{};
    GetWindowRect(dialogs.control(facts->controls[0]), &rect);
    const POINT middle = dialogs.middleOf(facts->controls[0]);
    for (const POINT edge : {POINT{rect.left, middle.y}, POINT{rect.right - 1, middle.y},
                             POINT{middle.x, rect.top}, POINT{middle.x, rect.bottom - 1}}) {
      EXPECT_EQ(screenPixel(edge), RGB(0, 0, 0)) << facts->name << "'s frame is covered";
    }
  }
  const Options options = confirm(host, dialogs);
  for (const ParameterFacts* facts : ofKind(ParameterKind::number)) {
    expectNumber(options, *facts, typed[facts->name]);
  }
  EXPECT_EQ(optionOf(options, origin), "0.125,0.75");
  EXPECT_EQ(optionOf(options, factsOf("UseImageColor")), "off");
  for (const ParameterFacts* facts : ofKind(ParameterKind::list)) {
    EXPECT_EQ(optionOf(options, *facts),
              facts->entries[static_cast<std::size_t>(facts->defaults[0])]);
  }
  for (const ParameterFacts* facts : ofKind(ParameterKind::color)) {
    expectColor(options, *facts, RGB(10, 20, 30));
  }
}

TEST_F(Controls, DraggedValuesAndTheSystemsColorsComeBack) {
  HostProgram host(arguments({"--no-color-services"}));
  DialogDriver dialogs(host.id());
  ASSERT_TRUE(dialogs.isOpen()) << host.messages();
  std::map<std::string, int> dragged;
  double part = 0.25;
  for (const ParameterFacts* facts : ofKind(ParameterKind::number)) {
    const int slider = facts->controls[1];
    const int target = hundredthsFor(*facts, part += 0.02);
    const int before = dialogs.sliderPosition(slider);
    dialogs.dragThumb(slider, target);
    eventually([&] { return dialogs.sliderPosition(slider) != before; });
    EXPECT_TRUE(eventually([&] {
      dragged[facts->name] = dialogs.sliderPosition(slider);
      return std::abs(dialogs.number(facts->controls[0]) * 100.0 - dragged[facts->name]) < 0.01;
    })) << facts->name;
    const double range = (facts->maximum - facts->minimum) * 100.0;
    EXPECT_NEAR(dragged[facts->name], target, range * 0.04) << facts->name;
  }
  for (const ParameterFacts* facts : ofKind(ParameterKind::list)) {
    const int last = static_cast<int>(facts->entries.size()) - 1;
    dialogs.chooseEntry(facts->controls[0], last);
    EXPECT_EQ(dialogs.entry(facts->controls[0]), last) << facts->name;
  }
  const ParameterFacts& imageColor = factsOf("UseImageColor");
  dialogs.takeFocus(factsOf("ColorBalance").controls[0]);
  pressKey(VK_TAB);
  eventually([&] { return dialogs.focused() == dialogs.control(imageColor.controls[0]); });
  pressKey(VK_SPACE);
  EXPECT_TRUE(eventually([&] { return !dialogs.isChecked(imageColor.controls[0]); }));

  const std::array<int, 3> channelEdits{706, 707, 708};  // of the system's chooser
  for (const ParameterFacts* facts : ofKind(ParameterKind::color)) {
    dialogs.clickOn(facts->controls[0]);
    const HWND chooser = awaitDialog(host.id(), "Color");
    ASSERT_NE(chooser, nullptr);
    EXPECT_EQ(IsWindowEnabled(dialogs.panel()), FALSE);
    EXPECT_EQ(IsWindowEnabled(dialogs.preview()), FALSE);
    const DialogDriver inChooser = DialogDriver::over(chooser);
    const bool low = facts->controls[0] == factsOf("ColorLow").controls[0];
    for (const int id : channelEdits) {
      const std::string value = std::to_string((low ? 40 : 90) + (id - channelEdits[0]) * 5);
      inChooser.replaceText(id, value);
      EXPECT_EQ(inChooser.text(id), value);
    }
    if (low) saveScreenshot("color-chooser");
    pressKey(VK_RETURN);
    EXPECT_TRUE(eventually([&] { return IsWindow(chooser) == FALSE; }));
    EXPECT_TRUE(eventually([&] { return IsWindowEnabled(dialogs.panel()) != FALSE; }));
  }
  const Options options = confirm(host, dialogs);
  for (const ParameterFacts* facts : ofKind(ParameterKind::number)) {
    expectNumber(options, *facts, dragged[facts->name] * 0.01);
  }
  for (const ParameterFacts* facts : ofKind(ParameterKind::list)) {
    EXPECT_EQ(optionOf(options, *facts), facts->entries.back());
  }
  EXPECT_EQ(optionOf(options, imageColor), "off");
  expectColor(options, factsOf("ColorLow"), RGB(40, 45, 50));
  expectColor(options, factsOf("ColorHigh"), RGB(90, 95, 100));
}

TEST_F(Controls, KeysMoveSlidersAndThePipetteTakesColors) {
  HostProgram host(arguments({"--intensity", "0"}));
  DialogDriver dialogs(host.id());
  ASSERT_TRUE(dialogs.isOpen()) << host.messages();
  ASSERT_TRUE(dialogs.zoomTo("100%"));
  dialogs.hideHandle();

  std::map<std::string, COLORREF> picked;
  POINT at{30, 20};  // from the frame's middle
  for (const ParameterFacts* facts : ofKind(ParameterKind::color)) {
    const RECT frame = dialogs.frame();
    const POINT place{(frame.left + frame.right) / 2 + at.x, (frame.top + frame.bottom) / 2 + at.y};
    at.x -= 50;
    dialogs.clickOn(facts->controls[0], Button::right);
    const COLORREF before = screenPixel(place);
    click(place);
    EXPECT_TRUE(eventually([&] { return dialogs.swatch(facts->controls[0]) == before; }))
        << facts->name;
    EXPECT_NE(before, RGB(255, 255, 255));
    EXPECT_EQ(dialogs.text(factsOf("Origin").controls[0]), "48") << "the pipette moved the light";
    picked[facts->name] = before;
  }

  std::map<std::string, int> moved;
  for (const ParameterFacts* facts : ofKind(ParameterKind::number)) {
    const int slider = facts->controls[1];
    dialogs.takeFocus(slider);
    const double range = facts->maximum - facts->minimum;
    const int page = std::max(static_cast<int>(range * 10.0), 1);
    const int lowest = hundredthsFor(*facts, 0.0);
    pressKey(VK_HOME);
    pressKey(VK_NEXT);
    pressKey(VK_RIGHT);
    pressKey(VK_RIGHT);
    pressKey(VK_LEFT);
    moved[facts->name] = lowest + page + 1;
    EXPECT_TRUE(eventually([&] {
      return std::abs(dialogs.number(facts->controls[0]) * 100.0 - moved[facts->name]) < 0.01;
    })) << facts->name
        << ' ' << dialogs.text(facts->controls[0]) << ' ' << moved[facts->name];
  }
  EXPECT_TRUE(pressKeyUntil(VK_RETURN, [&] { return dialogs.isClosed(); }));
  EXPECT_EQ(host.exitCode(), 0) << host.messages();
  const Options options = host.options();
  for (const ParameterFacts* facts : ofKind(ParameterKind::number)) {
    expectNumber(options, *facts, moved[facts->name] * 0.01);
  }
  for (const ParameterFacts* facts : ofKind(ParameterKind::color)) {
    expectColor(options, *facts, picked[facts->name]);
  }
}

}  // namespace
}  // namespace radiashafts::test
