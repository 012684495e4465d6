// Hosts and pictures of every kind under the dialogs.

#include <windows.h>

#include <atomic>
#include <new>

#include <xmmintrin.h>

#include "interface/win32/dialog_ids.h"
#include "tests/dialogs/dialog_test.h"
#include "tests/dialogs/screen.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

constexpr int intensityEdit = 1013;

class Hosts : public DialogTest {
 protected:
  // Opens the dialogs, moves the light, and confirms. Gives the option for the light back.
  static std::string moveLight(const std::vector<std::string>& arguments, HWND owner) {
    forgetSettings();
    HostProgram host(arguments);
    const DialogDriver dialogs(host.id());
    EXPECT_TRUE(dialogs.isOpen()) << host.messages();
    if (!dialogs.isOpen()) return "";
    EXPECT_EQ(GetWindow(dialogs.preview(), GW_OWNER), owner);
    const RECT frame = dialogs.frame();
    const std::string before = dialogs.text(1031);
    drag({frame.left + 30, frame.top + 40}, {frame.left + 60, frame.top + 70});
    EXPECT_TRUE(eventually([&] { return dialogs.text(1031) != before; }));
    click(dialogs.middleOf(IDOK));
    EXPECT_EQ(host.exitCode(), 0) << host.messages();
    return host.options()["--origin"];
  }
};

TEST_F(Hosts, WithoutAWindowAndWithOneOfAnotherProcess) {
  const std::string input = writePicture("in.png", placesPicture(96, 64));
  EXPECT_NE(moveLight({"--dialog", "--no-owner-window", input, path("out.png")}, nullptr), "");

  // The host's window here, with somebody who answers it.
  std::atomic<HWND> window{nullptr};
  std::atomic<DWORD> thread{0};
  std::thread owner([&] {
    thread = GetCurrentThreadId();
    window = CreateWindowA("STATIC", "another host", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 1200,
                           700, nullptr, nullptr, nullptr, nullptr);
    MSG message;
    while (GetMessageA(&message, nullptr, 0, 0) > 0) DispatchMessageA(&message);
    DestroyWindow(window);
  });
  eventually([&] { return window != nullptr; });
  const auto handle = std::to_string(reinterpret_cast<std::uintptr_t>(window.load()));
  EXPECT_NE(
      moveLight({"--dialog", "--owner-window", handle, input, path("out.png")}, window.load()), "");
  EXPECT_NE(IsWindow(window), FALSE);
  PostThreadMessageA(thread, WM_QUIT, 0, 0);
  owner.join();
}

TEST_F(Hosts, PicturesOfExtremeShapesAndOfChannels) {
  const struct {
    int width, height;
    bool multichannel;
  } kinds[] = {{1, 1, false}, {30000, 20, false}, {96, 64, true}};
  for (const auto& kind : kinds) {
    const std::string input = writePicture("in.bmp", placesPicture(kind.width, kind.height));
    std::vector<std::string> arguments{"--dialog", input, path("out.bmp")};
    if (kind.multichannel) arguments.insert(arguments.begin(), "--multichannel");
    HostProgram host(arguments);
    const DialogDriver dialogs(host.id());
    ASSERT_TRUE(dialogs.isOpen()) << host.messages();
    const RECT frame = dialogs.frame();
    const POINT middle{(frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2};
    drag({middle.x - 30, middle.y - 30}, middle, Button::right);
    click(middle);
    for (const int id : {ID_ZOOM_IN, ID_ZOOM_IN, ID_ZOOM_OUT, ID_ZOOM_OUT, ID_ZOOM_OUT}) {
      const std::string before = dialogs.text(ID_PERCENTAGE);
      dialogs.clickOn(id);
      EXPECT_TRUE(eventually([&] { return dialogs.text(ID_PERCENTAGE) != before; }));
    }
    dialogs.replaceText(intensityEdit, "3");
    dialogs.clickOn(IDOK);
    EXPECT_EQ(host.exitCode(), 0) << host.messages();
    const standin::Picture written = readPicture(path("out.bmp"));
    EXPECT_EQ(written.width, kind.width);
    EXPECT_EQ(written.height, kind.height);
    EXPECT_NEAR(std::atof(host.options()["--intensity"].c_str()), 3.0, 1e-9);
  }
}

// A host that calls the filter again while it works: from the interface and from the final render.
TEST_F(Hosts, ARunInsideARunIsRefused) {
  const standin::Picture picture = placesPicture(96, 64);
  standin::HostTraits traits;
  traits.playInfo = hostapi::playDisplay;
  standin::StandInHost host(picture, nullptr, traits);
  std::vector<std::int16_t> answers;
  const auto callAgain = [&answers] {
    hostapi::FilterRecord record{};
    std::intptr_t data = 0;
    std::int16_t result = 0;
    moduleEntry()(hostapi::selectorStart, &record, &data, &result);
    answers.push_back(result);
  };
  host.chooseColor = [&](std::array<std::int16_t, 3>&) {
    callAgain();
    return false;
  };
  host.onProgress = [&](std::int32_t, std::int32_t) {
    if (answers.size() < 2) callAgain();
  };
  standin::Picture output;
  standin::RunResult result;
  std::thread runner([&] { result = host.run(moduleEntry(), withoutRays(), output); });
  {
    const DialogDriver dialogs(GetCurrentProcessId());
    dialogs.clickOn(1036);
    EXPECT_TRUE(eventually([&] { return !answers.empty(); }));
    dialogs.replaceText(intensityEdit, "2");
    EXPECT_TRUE(eventually([&] { return dialogs.number(intensityEdit) == 2.0; }));
    dialogs.clickOn(IDOK);
  }
  runner.join();
  EXPECT_EQ(result.status, 0);
  EXPECT_EQ(answers, (std::vector<std::int16_t>(2, hostapi::userCanceledError)));
  EXPECT_NE(output.bytes, picture.bytes);
}

// The host's window, which ends its program when it is closed.
LRESULT CALLBACK ownerProcedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_DESTROY) PostQuitMessage(7);
  return DefWindowProcA(window, message, w, l);
}

HWND openOwner() {
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = ownerProcedure;
  windowClass.lpszClassName = "OwnerUnderTest";
  RegisterClassA(&windowClass);
  return CreateWindowA("OwnerUnderTest", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200,
                       nullptr, nullptr, nullptr, nullptr);
}

TEST_F(Hosts, TheOwnerRestsUnderTheDialogsAndItsEndIsCancel) {
  const standin::Picture picture = placesPicture(96, 64);
  for (const bool ends : {false, true}) {
    std::atomic<HWND> owner{nullptr};
    standin::RunResult result;
    bool awake = false;
    int quitCode = -1;
    std::thread runner([&] {
      standin::HostTraits traits;
      traits.playInfo = hostapi::playDisplay;
      traits.ownerWindow = owner = openOwner();
      standin::StandInHost host(picture, nullptr, traits);
      standin::Picture output;
      result = host.run(moduleEntry(), withoutRays(), output);
      awake = IsWindowEnabled(owner) != FALSE;
      MSG message;
      if (PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) != FALSE) {
        quitCode = static_cast<int>(message.wParam);
      }
    });
    {
      const DialogDriver dialogs(GetCurrentProcessId());
      EXPECT_TRUE(dialogs.isOpen());
      EXPECT_EQ(IsWindowEnabled(owner), FALSE);
      if (ends) {
        PostMessageA(owner, WM_CLOSE, 0, 0);
      } else {
        dialogs.clickOn(IDCANCEL);
      }
    }
    runner.join();
    EXPECT_EQ(result.status, hostapi::userCanceledError);
    EXPECT_EQ(awake, !ends);
    EXPECT_EQ(quitCode, ends ? 7 : -1);
  }
}

HWND openPanel() {
  return awaitDialog(GetCurrentProcessId(), "Radiashafts  V1.22");
}

// Commands that need no more than the dialogs' thread.
void command(HWND panel, int id) {
  PostMessageA(panel, WM_COMMAND, static_cast<WPARAM>(id), 0);
}

// The user presses a button while the host takes all messages, in a floating-point state of its own
// that lets no rounding pass.
TEST_F(Hosts, MessagesThatTheHostTakesAndLosesEndTheInterfaceAllTheSame) {
  constexpr unsigned allButRounding = 0x1F80 & ~0x1000U;
  const standin::Picture picture = placesPicture(96, 64);
  for (const int button : {IDOK, IDCANCEL}) {
    HostProcs procs;
    std::atomic<HWND> panel{nullptr};
    procs.advanceState = [&](hostapi::AdvanceStateProc serve) {
      if (IsWindow(panel) == FALSE) return serve();
      command(panel, button);
      PostMessageA(GetWindow(panel, GW_OWNER), WM_MOUSEMOVE, 0, MAKELPARAM(31, 47));
      const unsigned state = _mm_getcsr();
      MSG message;
      _mm_setcsr(allButRounding);
      while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE | PM_QS_POSTMESSAGE) != FALSE) {
        DispatchMessageA(&message);
      }
      _mm_setcsr(state);
      return serve();
    };
    HostThread host(picture, withoutRays(), {}, procs);
    panel = openPanel();
    command(panel, ID_ZOOM_OUT);
    ASSERT_TRUE(eventually([&] { return IsWindow(panel) == FALSE; }));
    EXPECT_EQ(host.result().result.status, button == IDOK ? 0 : hostapi::userCanceledError);
  }
}

TEST_F(Hosts, AnOwnerThatLooksAtNoMessagesHoldsNothingUp) {
  const standin::Picture picture = placesPicture(96, 64);
  for (const bool looksAtFirst : {true, false}) {
    std::atomic<bool> looks{looksAtFirst};
    std::atomic<bool> ends{false};
    standin::HostTraits traits;
    std::atomic<HWND> owner{nullptr};
    std::thread ownersThread([&] {
      owner = openOwner();
      MSG message;
      for (; !ends; Sleep(5)) {
        while (looks && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
          DispatchMessageA(&message);
        }
      }
    });
    eventually([&] { return owner != nullptr; });
    traits.ownerWindow = owner;
    {
      HostThread host(picture, withoutRays(), traits);
      const HWND panel = openPanel();
      EXPECT_NE(panel, nullptr);
      EXPECT_NE(IsWindowEnabled(owner) != FALSE, looksAtFirst);
      looks = false;
      Sleep(50);
      command(panel, IDCANCEL);
      EXPECT_TRUE(eventually([&] { return IsWindow(panel) == FALSE; }));
      EXPECT_TRUE(eventually([&] { return IsWindowEnabled(owner) != FALSE; }));
      looks = panel == nullptr || IsWindow(panel) != FALSE;
      EXPECT_EQ(host.result().result.status, hostapi::userCanceledError);
    }
    looks = true;
    EXPECT_TRUE(eventually([&] { return SendMessageA(owner, WM_NULL, 0, 0) == 0; }));
    EXPECT_NE(IsWindowEnabled(owner), FALSE);
    ends = true;
    ownersThread.join();
  }
}

// Thrown where the interface opens, and in a message.
TEST_F(Hosts, MemoryThatRunsOutInTheInterfaceEndsItAndTheNextOneOpens) {
  const standin::Picture picture = placesPicture(96, 64);
  for (const int failing : {1, 2, 0}) {
    HostProcs procs;
    procs.displayPixels = [&, count = 0](hostapi::DisplayPixelsProc draw,
                                         const hostapi::PSPixelMap& map, void* context) mutable {
      if (++count == failing) throw std::bad_alloc();
      return draw(&map, &map.bounds, 0, 0, context);
    };
    HostThread host(picture, withoutRays(), {}, procs);
    if (failing == 0) command(openPanel(), IDCANCEL);
    EXPECT_EQ(host.result().result.status,
              failing == 0 ? hostapi::userCanceledError : hostapi::memoryFullError);
    EXPECT_EQ(FindWindowA("#32770", "Radiashafts  V1.22 ~ www.halvorsund.example"), nullptr);
  }
}

}  // namespace
}  // namespace radiashafts::test
