// Slow renders: what changes, OK and "fixed preview" do to them, as the screen shows it.

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <set>

#include "interface/win32/dialog_ids.h"
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
  Renders() : picture_(placesPicture(6000, 4000)) {}

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

// Knows when a window of this process was last painted.
class PaintWatch {
 public:
  explicit PaintWatch(HWND window) : window_(window) {
    own_ = reinterpret_cast<WNDPROC>(GetWindowLongPtrA(window, GWLP_WNDPROC));
    SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(note));
  }
  ~PaintWatch() { SetWindowLongPtrA(window_, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(own_)); }
  PaintWatch(const PaintWatch&) = delete;
  PaintWatch& operator=(const PaintWatch&) = delete;

  static LONGLONG lastPaint() { return lastPaint_; }

 private:
  static LRESULT CALLBACK note(HWND window, UINT message, WPARAM w, LPARAM l) {
    const LRESULT result = CallWindowProcA(own_, window, message, w, l);
    if (message == WM_PAINT) {
      GdiFlush();
      LARGE_INTEGER now;
      QueryPerformanceCounter(&now);
      lastPaint_ = now.QuadPart;
    }
    return result;
  }

  static inline WNDPROC own_;
  static inline std::atomic<LONGLONG> lastPaint_;
  HWND window_;
};

// Measured and told, not judged. Nobody looks at the screen meanwhile: that takes the processors
// away from what is measured.
TEST_F(Renders, TheLightFollowsThePointer) {
  constexpr DWORD onePicture = 100;  // milliseconds, more than it takes on an idle machine
  constexpr unsigned longestWait = 120'000;
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  const standin::Picture picture = forestPicture(6000, 4000);
  HostThread host(picture, scriptOf(judge::Values()));
  DialogDriver dialogs(GetCurrentProcessId(), {1066, 1066});  // as in a first run
  ASSERT_TRUE(dialogs.isOpen());
  dialogs.hideHandle();
  const PaintWatch watch(dialogs.preview());
  const RECT frame = dialogs.frame();
  const POINT middle{(frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2};
  const RECT watched{middle.x + 20, middle.y + 20, middle.x + 60, middle.y + 40};
  for (const char* zoom : {"16.67%", "6.667%"}) {
    for (const DWORD rest : {0U, 400U}) {
      ASSERT_TRUE(dialogs.zoomTo(zoom));
      moveMouse(middle);
      press(Button::left);
      Sleep(1000);
      std::vector<std::uint8_t> shown = screenPicture(watched).bytes;
      std::vector<double> times;
      for (int i = 0; i < 40; ++i) {
        Sleep(rest);
        LARGE_INTEGER start;
        QueryPerformanceCounter(&start);
        nudgeMouse(i % 2 == 0 ? 30 : -30);
        ASSERT_TRUE(
            eventually([&] { return PaintWatch::lastPaint() > start.QuadPart; }, longestWait));
        Sleep(onePicture);
        times.push_back(static_cast<double>(PaintWatch::lastPaint() - start.QuadPart) * 1000.0 /
                        static_cast<double>(frequency.QuadPart));
        if (i < 2) {
          EXPECT_TRUE(
              eventually([&] { return screenPicture(watched).bytes != shown; }, longestWait));
          shown = screenPicture(watched).bytes;
        }
      }
      release(Button::left);
      std::sort(times.begin(), times.end());
      std::cout << "from a move of the light to its picture, 24 megapixels at " << zoom
                << (rest == 0 ? ", in a drag: " : ", after a rest: ") << "median " << times[20]
                << " ms, quartiles " << times[10] << " and " << times[30] << ", worst "
                << times.back() << '\n';
    }
  }
  dialogs.clickOn(IDCANCEL);
}

}  // namespace
}  // namespace radiashafts::test
