// Hosts of the dialogs: the filter in a thread of this program, or the host program.
#pragma once

#include <atomic>
#include <cstdlib>
#include <fstream>
#include <functional>
#include <new>
#include <sstream>
#include <thread>

#include <objbase.h>
#include <xmmintrin.h>

#include "tests/scenarios/user.h"
#include "tests/support/module_under_test.h"

namespace radiashafts::test {

// For the files of tests.
inline std::filesystem::path workFolder() {
  const auto folder = std::filesystem::temp_directory_path() / "radiashafts-scenarios";
  std::filesystem::create_directories(folder);
  return folder;
}

inline std::string contentsOf(const std::filesystem::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::string text = stream ? (std::ostringstream() << stream.rdbuf()).str() : "no file";
  std::erase(text, '\r');
  return text;
}

inline int count(const std::string& text, const std::string& part) {
  int found = 0;
  for (std::size_t at = 0; (at = text.find(part, at)) != std::string::npos; ++at) ++found;
  return found;
}

// A picture that says at each pixel where it lies: red is x, green is y, both by their low byte,
// and blue is a checkerboard.
inline standin::Picture placesPicture(int width, int height) {
  standin::Picture picture{width, height, 3, 3, false, 8, {}};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      for (const int value : {x, y, (x / 8 + y / 8) % 2 * 200}) {
        picture.bytes.push_back(static_cast<std::uint8_t>(value));
      }
    }
  }
  return picture;
}

// How the host's procs behave; empty: as usual.
inline std::string hostManner;
inline hostapi::FilterRecord standIns;
inline std::atomic<int> drawings{0};
inline std::atomic<bool> foundAnothersStyle{false};

// Presses OK and takes all posted messages out of the queue itself, with floating-point exceptions
// on.
inline hostapi::OSErr advanceState() {
  const HWND panel = findDialog("Radiashafts  V");
  if (hostManner == "drops messages" && panel != nullptr) {
    PostMessageA(panel, WM_COMMAND, IDOK, 0);
    PostQuitMessage(3);
    const unsigned state = _mm_getcsr();
    _mm_setcsr(0x1F80 & ~0x1000U);
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE | PM_QS_POSTMESSAGE) != FALSE) {
      DispatchMessageA(&message);
    }
    _mm_setcsr(state);
  }
  return standIns.advanceState();
}

inline hostapi::OSErr displayPixels(const hostapi::PSPixelMap* map, const hostapi::VRect* rect,
                                    std::int32_t row, std::int32_t column, void* context) {
  HANDLE style = nullptr;
  if (GetCurrentActCtx(&style) != FALSE && style != nullptr) foundAnothersStyle = true;
  ++drawings;
  if (hostManner == "runs out of memory" && drawings > 1) throw std::bad_alloc();
  if (hostManner == "draws twice" && drawings > 2) return -50;
  hostapi::PSPixelMap own = *map;
  const auto* from = static_cast<const std::uint8_t*>(map->baseAddr);
  std::vector<std::uint8_t> pixels(from, from + map->rowBytes * map->bounds.bottom);
  for (std::size_t i = 0; hostManner == "swaps channels" && i < pixels.size() - 2; i += 3) {
    std::swap(pixels[i], pixels[i + 2]);
  }
  own.baseAddr = pixels.data();
  return standIns.displayPixels(&own, rect, row, column, context);
}

inline void enterWithProcs(std::int16_t selector, void* block, std::intptr_t* data,
                           std::int16_t* result) {
  auto* record = static_cast<hostapi::FilterRecord*>(block);
  if (selector == hostapi::selectorStart) {
    standIns = *record;
    record->advanceState = advanceState;
    if (record->displayPixels != nullptr) record->displayPixels = displayPixels;
  }
  moduleEntry()(selector, block, data, result);
}

inline LRESULT CALLBACK ownerProcedure(HWND window, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_DESTROY) PostQuitMessage(7);
  return DefWindowProcA(window, message, w, l);
}

// A window of the calling thread; closing it posts a quit message.
inline HWND openOwner() {
  WNDCLASSA windowClass{};
  windowClass.lpfnWndProc = ownerProcedure;
  windowClass.lpszClassName = "OwnerUnderTest";
  RegisterClassA(&windowClass);
  return CreateWindowA("OwnerUnderTest", "", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 300, 200,
                       nullptr, nullptr, nullptr, nullptr);
}

// A run with the interface asked for. One at a time.
class Host {
 public:
  struct Settings {
    standin::Picture picture = placesPicture(96, 64);
    standin::Script script{};
    standin::HostTraits traits{};
    std::string manner{};       // as above
    std::string pickedColor{};  // "red,green,blue" of the host's colour chooser
    std::string apartment{};    // of COM: "multithreaded"; empty: none
    std::string window{};       // "own" of the run's thread, "hangs" once the dialogs are open;
                                // "about" for that dialog alone
  };
  explicit Host(Settings wanted) : settings(std::move(wanted)), thread_([this] { runFilter(); }) {}
  // The host program. Wine may end one before its first line: if it says nothing it starts again.
  explicit Host(const std::string& arguments)
      : thread_([this, line = "\"\"" RADIASHAFTS_PROGRAM "\" --print-script " + arguments +
                              " > \"" + (workFolder() / "output.txt").string() + "\" 2>&1\""] {
          for (int starts = 0; starts < 3 && (starts == 0 || output().empty()); ++starts) {
            status_ = std::system(line.c_str());
          }
          ended_ = true;
        }) {}
  // Closes the dialogs that a failed test has left open.
  ~Host() {
    while (!ended_) {
      if (const HWND dialog = findDialog("")) PostMessageA(dialog, WM_CLOSE, 0, 0);
      PostThreadMessageA(id_, WM_QUIT, 0, 0);
      Sleep(100);
    }
    thread_.join();
  }
  Host(const Host&) = delete;
  Host& operator=(const Host&) = delete;

  const Settings settings;
  std::atomic<HWND> window{nullptr};
  bool hasEnded() const { return ended_; }
  // The filter's answer or the program's exit code, and the quit message that was left in the
  // thread or -1. These wait for the end.
  int status() const { return await() ? status_ : -999; }
  int quitCode() const { return await() ? quitCode_ : -999; }
  static std::string output() { return contentsOf(workFolder() / "output.txt"); }

 private:
  bool await() const {
    return eventually([this] { return ended_.load(); });
  }

  void runFilter() {
    id_ = GetCurrentThreadId();
    if (settings.apartment == "multithreaded") CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    hostManner = settings.manner;
    drawings = 0;
    foundAnothersStyle = false;
    standin::HostTraits traits = settings.traits;
    traits.playInfo = hostapi::playDisplay;
    std::thread ownersThread;
    if (settings.window == "own") window = openOwner();
    if (settings.window == "hangs") {
      ownersThread = std::thread([this] {
        MSG message;
        window = openOwner();
        for (bool hangs = false; !ended_; Sleep(5)) {
          hangs = hangs || findDialog("Radiashafts  V") != nullptr;
          while (!hangs && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != FALSE) {
            DispatchMessageA(&message);
          }
        }
      });
      eventually([this] { return window != nullptr; });
    }
    traits.ownerWindow = window;
    standin::StandInHost host(settings.picture, nullptr, traits);
    host.faults.noProgressProc = settings.manner == "shows no progress";
    host.chooseColor = [this](std::array<std::int16_t, 3>& color) {
      return std::sscanf(settings.pickedColor.c_str(), "%hd,%hd,%hd", &color[0], &color[1],
                         &color[2]) == 3;
    };
    standin::Picture result;
    if (settings.window == "about") {
      hostapi::AboutRecord record{};
      std::int16_t answer = 0;
      std::intptr_t data = 0;
      moduleEntry()(hostapi::selectorAbout, &record, &data, &answer);
      status_ = answer;
    } else {
      status_ = host.run(enterWithProcs, settings.script, result).status;
    }
    MSG message;
    if (PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE) != FALSE) {
      quitCode_ = static_cast<int>(message.wParam);
    }
    const auto isAwake = [this] { return IsWindowEnabled(window) != FALSE; };
    if (IsWindow(window) != FALSE && !eventually(isAwake)) status_ = -998;
    if (foundAnothersStyle) status_ = -997;
    ended_ = true;
    if (ownersThread.joinable()) ownersThread.join();
  }

  int status_ = 0;
  int quitCode_ = -1;
  std::atomic<DWORD> id_{0};
  std::atomic<bool> ended_{false};
  std::thread thread_;
};

}  // namespace radiashafts::test
