// A session of many kinds of changes, undone and redone.

#include <functional>

#include "interface/win32/dialog_ids.h"
#include "parameters/effect_table.h"
#include "tests/dialogs/dialog_test.h"
#include "tests/dialogs/screen.h"

namespace radiashafts::test {
namespace {

class History : public DialogTest {};

using State = std::map<std::string, std::string>;

// What differs, for messages.
std::string difference(const State& a, const State& b) {
  std::string text;
  for (const auto& [name, value] : a) {
    if (b.at(name) != value) text += name + ": " + value + " and not " + b.at(name) + "; ";
  }
  return text;
}

TEST_F(History, WalksAMixedSessionBackAndForth) {
  const standin::Picture picture = placesPicture(96, 64);
  const std::string input = writePicture("in.png", picture);
  // A value of more digits than its edit shows.
  HostProgram host({"--dialog", "--picked-color", "200,30,90", "--selection-high", "252.00499",
                    input, path("out.png")});
  DialogDriver dialogs(host.id());
  ASSERT_TRUE(dialogs.isOpen()) << host.messages();

  const auto press = [&](int id) { return [&dialogs, id] { dialogs.clickOn(id); }; };
  const auto type = [&](int id, const char* digit) {
    return [&dialogs, id, digit] { dialogs.replaceText(id, digit); };
  };
  const auto dragTo = [&](int slider, int position) {
    return [&dialogs, slider, position] { dialogs.dragThumb(slider, position); };
  };
  const auto key = [&](int slider, WORD code) {
    return [&dialogs, slider, code] {
      dialogs.takeFocus(slider);
      pressKey(code);
    };
  };
  const auto choose = [&](int list, int entry) {
    return [&dialogs, list, entry] { dialogs.chooseEntry(list, entry); };
  };
  const auto dragLight = [&](LONG x, LONG y) {
    return [&dialogs, x, y] { drag(dialogs.onScreen({150, 150}), dialogs.onScreen({x, y})); };
  };
  constexpr int randomize = 1040;
  const std::vector<std::function<void()>> steps{
      type(1013, "3"),     dragTo(1025, 40),    choose(1035, 1),     dragLight(210, 190),
      key(1064, VK_RIGHT), press(1076),         press(1036),         type(1067, "9"),
      choose(1009, 7),     dragTo(1038, 120),   key(1020, VK_PRIOR), type(1031, "7"),
      press(randomize),    dragLight(180, 260), choose(1029, 1),     press(1037),
      type(1066, "2"),     press(ID_RESET),     dragTo(1012, 30),    key(1016, VK_LEFT),
      type(1019, "1"),     press(randomize),    choose(1009, 20),    dragLight(230, 150),
      type(1028, "0"),     press(1076),         press(1076),         dragTo(1033, -60),
      key(1065, VK_NEXT),  type(1023, "2"),     dragTo(1024, -20),   choose(1035, 1),
      press(randomize),    type(1032, "5"),     dragLight(90, 220),  key(1027, VK_NEXT),
      press(1036),         choose(1029, 2),     type(1030, "4"),     press(ID_RESET)};
  ASSERT_EQ(steps.size(), 40U);

  // What the controls show once the keyboard has gone to OK, and once they have settled.
  const auto settledState = [&] {
    State state = dialogs.state();
    int steady = 0;
    eventually([&] {
      State now = dialogs.state();
      steady = now == state ? steady + 1 : 0;
      state = std::move(now);
      return steady >= 5;
    });
    return state;
  };
  std::vector<State> states{settledState()};
  for (const auto& step : steps) {
    step();
    if (!eventually([&] { return dialogs.state() != states.back(); }, 5000)) {
      ADD_FAILURE() << "step " << states.size() << " changed nothing";
    }
    states.push_back(settledState());
  }
  const auto walkTo = [&](int button, std::size_t place) {
    dialogs.clickOn(button);
    State now;
    EXPECT_TRUE(eventually(
        [&] {
          now = dialogs.state();
          return now == states[place];
        },
        5000))
        << "at step " << place << ": " << difference(now, states[place]);
  };
  for (std::size_t i = steps.size(); i-- > 0;) walkTo(ID_UNDO, i);
  EXPECT_TRUE(eventually([&] { return IsWindowEnabled(dialogs.control(ID_UNDO)) == FALSE; }));
  for (std::size_t i = 1; i <= steps.size(); ++i) walkTo(ID_REDO, i);
  EXPECT_TRUE(eventually([&] { return IsWindowEnabled(dialogs.control(ID_REDO)) == FALSE; }));
  for (std::size_t i = steps.size(); i-- > 10;) walkTo(ID_UNDO, i);

  // A new change ends the way forward.
  dialogs.replaceText(1013, "5");
  EXPECT_TRUE(eventually([&] { return IsWindowEnabled(dialogs.control(ID_REDO)) == FALSE; }));
  dialogs.clickOn(IDCANCEL);
  EXPECT_EQ(host.exitCode(), 5);
}

}  // namespace
}  // namespace radiashafts::test
