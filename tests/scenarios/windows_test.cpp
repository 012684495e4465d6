// The Windows module over many loads and openings, and at the end of its process.

#include <algorithm>
#include <iostream>

#include <gtest/gtest.h>

#include "interface/win32/dialog_ids.h"
#include "standin/system/module.h"
#include "tests/scenarios/hosts.h"
#include "tests/support/long_test.h"
#include "tests/support/process_usage.h"

namespace radiashafts::test {
namespace {

// Memory may grow by a step of the heap, and the system makes a handle or a drawing object or two
// of its own late. A leak in each round is far more: there are ten rounds or more.
void expectNoMore(const ProcessUsage& before, std::size_t moreMemory) {
  constexpr int late = 2;
  ProcessUsage after;
  eventually([&] {  // threads of the system's pools end in their own time
    after = processUsage();
    return after.threads <= before.threads && after.handles <= before.handles + late;
  });
  std::cout << "before: " << before << "\nafter:  " << after << '\n';
  EXPECT_GT(std::min({before.threads, before.handles, before.drawingObjects}), 0);
  EXPECT_LE(after.threads, before.threads);
  EXPECT_LE(after.handles, before.handles + late);
  EXPECT_LE(after.drawingObjects, before.drawingObjects + late);
  EXPECT_LE(after.memory, before.memory + moreMemory);
}

TEST(Soak, OpeningsLeaveNothingBehind) {
  const auto openAndClose = [](int times) {
    for (int i = 0; i < times; ++i) {
      Host::Settings settings;
      settings.traits.displayPixels = i % 2 == 0;
      const Host host(settings);
      HWND panel = nullptr;
      ASSERT_TRUE(eventually([&] { return (panel = findDialog("Radiashafts  V")) != nullptr; }));
      for (const int id : {ID_UNDO, ID_ZOOM_OUT, ID_ZOOM_IN, ID_RESET, ID_HIDE_HANDLE, IDCANCEL}) {
        SendMessageA(panel, WM_COMMAND, static_cast<WPARAM>(id), 0);
      }
      EXPECT_EQ(host.status(), hostapi::userCanceledError);
    }
  };
  openAndClose(20);
  const ProcessUsage before = processUsage();
  openAndClose(isLongTest() ? 180 : 10);
  expectNoMore(before, 1U << 21);
}

int loadAndRun(standin::Module& module) {
  if (!module.load(RADIASHAFTS_MODULE_PATH)) return -1;
  const auto entry = reinterpret_cast<standin::EntryPoint>(module.symbol("ENTRYPOINT"));
  const standin::Picture picture = placesPicture(50, 40);
  standin::StandInHost host(picture, nullptr);
  standin::Picture output;
  return host.run(entry, {}, output).status;
}

TEST(WindowsModule, LoadedAndUnloadedAHundredTimesLeavesNothing) {
  // Hosts have these; where they come and go with the module, Wine's keep a handle each time.
  for (const char* library : {"comctl32.dll", "comdlg32.dll"}) LoadLibraryA(library);
  const auto loadAndUnload = [](int times) {
    for (int i = 0; i < times; ++i) {
      standin::Module module;
      ASSERT_EQ(loadAndRun(module), 0);
    }
    EXPECT_EQ(GetModuleHandleA("radiashafts.dll"), nullptr) << "still loaded";
  };
  loadAndUnload(10);
  eventually([] { return processUsage().threads == 1; });
  const ProcessUsage before = processUsage();
  loadAndUnload(100);
  expectNoMore(before, 1U << 18);
}

// The workers are gone by the time the module hears of the end, and nobody waits for them.
TEST(WindowsModuleDeathTest, AProcessEndsWithTheModuleLoaded) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(ExitProcess(loadAndRun(*new standin::Module)), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace radiashafts::test
