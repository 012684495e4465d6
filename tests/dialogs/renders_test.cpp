// Slow renders: what changes, OK and "fixed preview" do to them, as the screen shows it.

#include <windows.h>

#include <algorithm>
#include <set>

#include "interface/dialog_ids.h"
#include "tests/dialogs/dialog_test.h"
#include "tests/dialogs/screen.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

constexpr int intensityEdit = 1013;

// What a row of a picture of places shows at 100 %: every pixel, pixels of a coarser render, or
// something else.
enum class Sight { full, draft, other };

class Renders : public DialogTest {
 protected:
  Renders() : picture_(placesPicture(3000, 2000)) {}

  static standin::Script slowWithoutRays() {
    judge::Values values;
    values.intensity = 0.0;
    values.selectionSoften = 2.0;
    values.mode = 2;
    return scriptOf(values);
  }

  static Sight look(const DialogDriver& dialogs) {
    const RECT frame = dialogs.frame();
    constexpr int length = 200;
    const standin::Picture row =
        screenPicture({frame.left + 50, frame.top + 60, frame.left + 50 + length, frame.top + 61});
    std::set<int> steps;
    int wide = 0;
    for (int x = 1; x < length; ++x) {
      const int step = (*pixelAt(row, x, 0) - *pixelAt(row, x - 1, 0)) & 255;
      steps.insert(step);
      if (step > 1) ++wide;
    }
    if (steps == std::set<int>{1}) return Sight::full;
    const bool coarse = steps.size() <= 3 && *steps.rbegin() <= 8 && wide > length / 12;
    return coarse ? Sight::draft : Sight::other;
  }

  static bool showsFull(const DialogDriver& dialogs) {
    return eventually([&] { return look(dialogs) == Sight::full; }, 120000);
  }

  static double secondsSince(const LARGE_INTEGER& start) {
    LARGE_INTEGER now, frequency;
    QueryPerformanceCounter(&now);
    QueryPerformanceFrequency(&frequency);
    return static_cast<double>(now.QuadPart - start.QuadPart) /
           static_cast<double>(frequency.QuadPart);
  }

  const standin::Picture picture_;
};

TEST_F(Renders, ALateChangeCutsOneShortUnlessThePreviewIsFixed) {
  HostThread host(picture_, slowWithoutRays());
  DialogDriver dialogs(GetCurrentProcessId());
  ASSERT_TRUE(dialogs.isOpen());
  dialogs.hideHandle();
  ASSERT_TRUE(dialogs.zoomTo("100%"));
  ASSERT_TRUE(showsFull(dialogs));
  // Without rays the radius changes nothing but that there is something to render.
  constexpr int radiusSlider = 1027;
  dialogs.takeFocus(radiusSlider);
  const auto changeFor = [&](unsigned milliseconds) {
    std::set<Sight> seen;
    const int before = dialogs.sliderPosition(radiusSlider);
    eventually(
        [&] {
          pressKey(VK_RIGHT);
          seen.insert(look(dialogs));
          Sleep(25);
          return seen.contains(Sight::draft);
        },
        milliseconds);
    EXPECT_GT(dialogs.sliderPosition(radiusSlider), before);
    return seen;
  };
  EXPECT_TRUE(changeFor(20000).contains(Sight::draft));
  EXPECT_TRUE(showsFull(dialogs)) << "the last picture is not at full quality";

  dialogs.clickOn(ID_FIXED_PREVIEW);
  EXPECT_TRUE(showsFull(dialogs));
  dialogs.takeFocus(radiusSlider);
  EXPECT_EQ(changeFor(3000), std::set<Sight>{Sight::full});
  dialogs.clickOn(IDCANCEL);
}

TEST_F(Renders, OkAndCancelEndOneAtOnce) {
  for (const int button : {IDOK, IDCANCEL}) {
    forgetSettings();
    HostThread host(picture_, slowWithoutRays());
    DialogDriver dialogs(GetCurrentProcessId());
    ASSERT_TRUE(dialogs.isOpen());
    dialogs.hideHandle();
    ASSERT_TRUE(dialogs.zoomTo("100%"));
    ASSERT_TRUE(showsFull(dialogs));
    const auto change = [&](const char* digit) {
      dialogs.replaceText(intensityEdit, digit);
      LARGE_INTEGER start;
      QueryPerformanceCounter(&start);
      return start;
    };
    const LARGE_INTEGER undisturbed = change("9");
    ASSERT_TRUE(eventually([&] { return look(dialogs) == Sight::other; }));
    const double whole = secondsSince(undisturbed);

    const LARGE_INTEGER ended = change("8");
    const POINT middle = dialogs.middleOf(button);
    click(middle);
    EXPECT_TRUE(eventually([&] { return dialogs.isClosed(); }));
    EXPECT_LT(secondsSince(ended), whole * 0.7);
    EXPECT_EQ(host.result().result.status, button == IDOK ? 0 : hostapi::userCanceledError);
  }
}

// Measured and told, not judged.
TEST_F(Renders, TheLightFollowsThePointer) {
  const standin::Picture picture = forestPicture(6000, 4000);
  const SIZE firstRun{1066, 1066};
  HostThread host(picture, scriptOf(judge::Values()));
  DialogDriver dialogs(GetCurrentProcessId(), firstRun);
  ASSERT_TRUE(dialogs.isOpen());
  dialogs.hideHandle();
  const RECT frame = dialogs.frame();
  const POINT middle{(frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2};
  const RECT watched{middle.x + 20, middle.y + 20, middle.x + 60, middle.y + 40};
  // Every look at the screen takes the processors away from what is measured.
  for (const auto& [zoom, rest] : {std::pair("16.67%", 20U), {"6.667%", 7U}}) {
    ASSERT_TRUE(dialogs.zoomTo(zoom));
    moveMouse(middle);
    press(Button::left);
    std::vector<double> times;
    for (int i = 0; i < 20; ++i) {
      std::vector<std::uint8_t> before = screenPicture(watched).bytes;
      int steady = 0;
      eventually([&] {
        const std::vector<std::uint8_t> now = screenPicture(watched).bytes;
        steady = now == before ? steady + 1 : 0;
        before = now;
        return steady >= 40;
      });
      LARGE_INTEGER start;
      QueryPerformanceCounter(&start);
      nudgeMouse(i % 2 == 0 ? 30 : -30);
      Sleep(rest);
      EXPECT_TRUE(eventually([&] { return screenPicture(watched).bytes != before; }, 30000, 1));
      times.push_back(secondsSince(start) * 1000.0);
    }
    release(Button::left);
    std::sort(times.begin(), times.end());
    std::cout << "from a move of the light to its picture, 24 megapixels at " << zoom << ": median "
              << times[10] << " ms, " << times.front() << " to " << times.back() << '\n';
  }
  dialogs.clickOn(IDCANCEL);
}

}  // namespace
}  // namespace radiashafts::test
