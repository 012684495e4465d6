// What many openings leave behind.

#include <windows.h>

#include <atomic>
#include <iostream>

#include "interface/win32/dialog_ids.h"
#include "tests/dialogs/dialog_test.h"
#include "tests/support/long_test.h"
#include "tests/support/process_usage.h"

namespace radiashafts::test {
namespace {

class Soak : public DialogTest {};

DWORD WINAPI waitForEvent(void* event) {
  return WaitForSingleObject(event, INFINITE);
}

// Else the openings below could leave anything behind.
TEST_F(Soak, EveryCounterCounts) {
  const ProcessUsage before = processUsage();
  const HANDLE event = CreateEventA(nullptr, TRUE, FALSE, nullptr);
  HANDLE threads[3];
  for (HANDLE& thread : threads) {
    thread = CreateThread(nullptr, 0, waitForEvent, event, 0, nullptr);
  }
  void* const memory = VirtualAlloc(nullptr, 1U << 23, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
  const HPEN pen = CreatePen(PS_SOLID, 0, 0);
  const HWND window =
      CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, nullptr, nullptr, nullptr, nullptr);
  const ProcessUsage full = processUsage();
  EXPECT_EQ(full.threads, before.threads + 3);
  EXPECT_GE(full.handles, before.handles + 4);
  EXPECT_EQ(full.drawingObjects, before.drawingObjects + 1);
  EXPECT_GE(full.windows, before.windows + 1);
  EXPECT_GE(full.memory, before.memory + (1U << 23));
  SetEvent(event);
  WaitForMultipleObjects(3, threads, TRUE, INFINITE);
  for (const HANDLE thread : threads) CloseHandle(thread);
  CloseHandle(event);
  VirtualFree(memory, 0, MEM_RELEASE);
  DeleteObject(pen);
  DestroyWindow(window);
  std::cout << "before: " << before << "\nfull:   " << full << "\nafter:  " << processUsage()
            << '\n';
}

// The user who sees the dialogs, and the preview with a picture in it, and presses Escape.
class BusyUser {
 public:
  ~BusyUser() {
    done_ = true;
    thread_.join();
  }
  int opened() const { return opened_; }

 private:
  void work() {
    while (!done_) {
      const HWND panel = FindWindowA("#32770", "Radiashafts  V1.22 ~ www.halvorsund.example");
      if (panel == nullptr || IsWindowVisible(panel) == FALSE) {
        Sleep(2);
        continue;
      }
      const HWND preview = GetWindow(panel, GW_OWNER);
      eventually([preview] { return IsWindowVisible(preview) != FALSE; }, 2000);
      PostMessageA(panel, WM_COMMAND, ID_UNDO, 0);
      for (const int id : {ID_ZOOM_OUT, ID_ZOOM_IN, ID_RESET, ID_HIDE_HANDLE, ID_HIDE_HANDLE}) {
        SendMessageTimeoutA(panel, WM_COMMAND, static_cast<WPARAM>(id), 0, SMTO_NORMAL, 2000,
                            nullptr);
        Sleep(5);
      }
      ++opened_;
      eventually(
          [panel] {
            PostMessageA(GetDlgItem(panel, IDCANCEL), WM_KEYDOWN, VK_ESCAPE, 1);
            Sleep(10);
            return IsWindow(panel) == FALSE;
          },
          20000);
    }
  }

  std::atomic<bool> done_{false};
  std::atomic<int> opened_{0};
  std::thread thread_{[this] { work(); }};
};

TEST_F(Soak, OpeningsLeaveNothingBehind) {
  const bool isLong = isLongTest();
  const int warmUp = isLong ? 20 : 10;
  const int openings = isLong ? 200 : 25;
  const standin::Picture picture = placesPicture(300, 200);
  const BusyUser user;
  int opened = 0;
  const auto openAndClose = [&](int times) {
    for (; opened < times; ++opened) {
      standin::HostTraits traits;
      traits.playInfo = hostapi::playDisplay;
      traits.displayPixels = opened % 2 == 0;
      const ModuleRun run = runModule(picture, nullptr, {}, traits);
      EXPECT_EQ(run.result.status, hostapi::userCanceledError);
      EXPECT_EQ(run.result.leaked, 0);
    }
  };
  openAndClose(warmUp);
  Sleep(1000);
  const ProcessUsage before = processUsage();
  openAndClose(openings);
  // Threads of the system's pools end in their own time.
  ProcessUsage after;
  eventually(
      [&] {
        after = processUsage();
        return after.threads <= before.threads && after.handles <= before.handles + 2;
      },
      120'000);
  SCOPED_TRACE(testing::Message() << "before: " << before << "; after: " << after);
  EXPECT_EQ(user.opened(), openings);
  EXPECT_LE(after.threads, before.threads);
  EXPECT_LE(after.handles, before.handles + 2);
  EXPECT_LE(after.drawingObjects, before.drawingObjects);
  EXPECT_LE(after.windows, before.windows);
  EXPECT_LE(after.memory, before.memory + (1U << 21));  // the heap grows in steps
  std::cout << "before: " << before << "\nafter:  " << after << '\n';
}

}  // namespace
}  // namespace radiashafts::test
