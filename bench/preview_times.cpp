// From a move of the light to its new picture in the preview, painted and handed to the display:
// preview_times MODULE, with a display. Nobody looks at the screen meanwhile: that takes the
// processors away from what is measured.

#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <iostream>
#include <thread>
#include <vector>

#include "bench/generated_picture.h"
#include "interface/win32/dialog_ids.h"
#include "standin/stand_in_host.h"
#include "standin/system/module.h"
#include "tests/scenarios/user.h"

namespace radiashafts {
namespace {

std::atomic<LONGLONG> lastPaint{0};
WNDPROC previewProcedure = nullptr;

LONGLONG now() {
  LARGE_INTEGER time;
  QueryPerformanceCounter(&time);
  return time.QuadPart;
}

LRESULT CALLBACK notePainting(HWND window, UINT message, WPARAM w, LPARAM l) {
  const LRESULT result = CallWindowProcA(previewProcedure, window, message, w, l);
  if (message == WM_PAINT) {
    GdiFlush();
    lastPaint = now();
  }
  return result;
}

// Milliseconds of forty moves of a light that is held by the mouse.
std::vector<double> timesOfMoves(DWORD rest) {
  constexpr DWORD onePicture = 100;  // milliseconds, more than it takes on an idle machine
  LARGE_INTEGER frequency;
  QueryPerformanceFrequency(&frequency);
  std::vector<double> times;
  for (int i = 0; i < 40; ++i) {
    Sleep(rest);
    const LONGLONG start = now();
    test::sendMouse(MOUSEEVENTF_MOVE, {i % 2 == 0 ? 30 : -30, 0});
    test::eventually([start] { return lastPaint > start; });
    Sleep(onePicture);
    times.push_back(static_cast<double>(lastPaint - start) * 1000.0 /
                    static_cast<double>(frequency.QuadPart));
  }
  std::sort(times.begin(), times.end());
  return times;
}

double percentageOf(const std::string& text) {
  return std::strtod(text.c_str(), nullptr);
}

void measure() {
  HWND panel = nullptr;
  if (!test::eventually([&] { return (panel = test::findDialog("Radiashafts  V")) != nullptr; })) {
    return;
  }
  const HWND preview = GetWindow(panel, GW_OWNER);
  test::eventually([preview] { return IsWindowVisible(preview) != FALSE; });
  SetWindowPos(preview, nullptr, 400, 40, 1066, 1066, SWP_NOZORDER | SWP_NOACTIVATE);
  const RECT frame = test::settledRect(preview);
  PostMessageA(panel, WM_COMMAND, ID_HIDE_HANDLE, 0);
  previewProcedure = reinterpret_cast<WNDPROC>(
      SetWindowLongPtrA(preview, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(notePainting)));
  const HWND percentage = GetDlgItem(panel, ID_PERCENTAGE);
  for (const char* zoom : {"16.67%", "6.667%"}) {
    for (; test::textOf(percentage) != zoom; Sleep(500)) {
      const bool isSmaller = percentageOf(test::textOf(percentage)) < percentageOf(zoom);
      PostMessageA(panel, WM_COMMAND, isSmaller ? ID_ZOOM_IN : ID_ZOOM_OUT, 0);
    }
    for (const DWORD rest : {0U, 400U}) {
      test::moveMouse({(frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2});
      test::sendMouse(MOUSEEVENTF_LEFTDOWN);
      Sleep(1000);
      const std::vector<double> times = timesOfMoves(rest);
      test::sendMouse(MOUSEEVENTF_LEFTUP);
      std::cout << zoom << (rest == 0 ? ", in a drag: " : ", after a rest: ") << "median "
                << times[20] << " ms, quartiles " << times[10] << " and " << times[30] << ", worst "
                << times.back() << std::endl;
    }
  }
  PostMessageA(panel, WM_COMMAND, IDCANCEL, 0);
}

int run(const char* path) {
  standin::Module module;
  if (!module.load(path)) {
    std::cerr << module.error() << '\n';
    return 1;
  }
  const auto entry = reinterpret_cast<standin::EntryPoint>(module.symbol("ENTRYPOINT"));
  const standin::Picture picture = bench::makePicture(6000, 4000, 8, 3, false);
  standin::HostTraits traits;
  traits.playInfo = hostapi::playDisplay;
  standin::StandInHost host(picture, nullptr, traits);
  // Wine's window system starts with its first window, and two threads that both have the first one
  // may wait for each other for ever.
  DestroyWindow(CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr));
  std::thread user(measure);
  standin::Picture output;
  host.run(entry, {}, output);
  user.join();
  return 0;
}

}  // namespace
}  // namespace radiashafts

int main(int argc, char** argv) {
  return argc == 2 ? radiashafts::run(argv[1]) : 2;
}
