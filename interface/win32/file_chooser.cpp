#include "interface/win32/file_chooser.h"

#include <algorithm>
#include <vector>

#include <commdlg.h>
#include <objbase.h>

#include "interface/win32/interface_end.h"
#include "interface/win32/visual_style.h"

namespace radiashafts {
namespace {

constexpr std::size_t longestPath = 32768;  // characters, terminating zero included

// RAII: restores the process's working directory, which the file dialog changes.
class WorkingDirectoryRestorer {
 public:
  WorkingDirectoryRestorer() {
    if (GetCurrentDirectoryW(static_cast<DWORD>(path_.size()), path_.data()) == 0) path_[0] = 0;
  }
  ~WorkingDirectoryRestorer() {
    if (path_[0] != 0) SetCurrentDirectoryW(path_.data());
  }
  WorkingDirectoryRestorer(const WorkingDirectoryRestorer&) = delete;
  WorkingDirectoryRestorer& operator=(const WorkingDirectoryRestorer&) = delete;

 private:
  std::vector<wchar_t> path_ = std::vector<wchar_t>(longestPath);
};

struct Choice {
  HWND owner;
  std::vector<wchar_t> path;
  bool chosen = false;
};

// The file need not exist; a new name creates a new file.
void choose(Choice& choice) {
  OPENFILENAMEW request{};
  request.lStructSize = sizeof request;
  request.hwndOwner = choice.owner;
  request.lpstrFilter = L"Presets File (*.cfg)\0*.cfg\0";
  request.nFilterIndex = 1;
  request.lpstrFile = choice.path.data();
  request.nMaxFile = static_cast<DWORD>(choice.path.size());
  request.lpstrTitle = L"Open Presets File";
  request.lpstrDefExt = L"cfg";
  request.Flags = OFN_HIDEREADONLY | OFN_EXPLORER | OFN_LONGNAMES | OFN_ENABLESIZING;
  choice.chosen = GetOpenFileNameW(&request) != FALSE;
  if (!choice.chosen && CommDlgExtendedError() == FNERR_INVALIDFILENAME) {
    choice.path[0] = 0;  // retries without an initial path
    choice.chosen = GetOpenFileNameW(&request) != FALSE;
  }
}

DWORD WINAPI chooseInApartment(void* choice) noexcept {
  const VisualStyle::Reactivation style;
  const HRESULT entered =
      CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
  try {
    choose(*static_cast<Choice*>(choice));
  } catch (...) {  // from an extension of the system's dialog: as Cancel
    static_cast<Choice*>(choice)->chosen = false;
  }
  if (SUCCEEDED(entered)) CoUninitialize();
  return 0;
}

// The dialog's shell parts need a single-threaded apartment. A thread that has not chosen its kind
// gets that one from the dialog.
bool isMultithreaded() {
  APTTYPE type = APTTYPE_STA;
  APTTYPEQUALIFIER qualifier = APTTYPEQUALIFIER_NONE;
  return SUCCEEDED(CoGetApartmentType(&type, &qualifier)) && type == APTTYPE_MTA &&
         qualifier != APTTYPEQUALIFIER_IMPLICIT_MTA;
}

// Dispatches this thread's messages until the dialog's thread has ended. While the owner is
// enabled, before and after the dialog, only messages that other threads send: no input reaches it.
// The interface's end and a quit message close the dialog; the quit message is posted again.
void awaitChooser(HANDLE thread, DWORD id, HWND owner) {
  constexpr DWORD pause = 50;  // milliseconds
  std::optional<int> quit;
  for (DWORD woken = WAIT_TIMEOUT; woken != WAIT_OBJECT_0;) {
    const bool ends = quit || interfaceEnd().isEnding();
    if (ends) PostThreadMessageW(id, WM_QUIT, 0, 0);
    const bool takesInput = IsWindowEnabled(owner) == FALSE;
    woken =
        MsgWaitForMultipleObjectsEx(1, &thread, ends ? pause : INFINITE,
                                    takesInput ? QS_ALLINPUT : QS_SENDMESSAGE, MWMO_INPUTAVAILABLE);
    MSG message;
    if (PeekMessageA(&message, nullptr, 0, 0,
                     takesInput ? PM_REMOVE : PM_NOREMOVE | PM_QS_SENDMESSAGE) == FALSE ||
        !takesInput) {
      continue;
    }
    if (message.message == WM_QUIT) {
      quit = static_cast<int>(message.wParam);
    } else {
      TranslateMessage(&message);
      DispatchMessageA(&message);
    }
  }
  if (quit) PostQuitMessage(*quit);
}

}  // namespace

std::optional<std::wstring> choosePresetFile(HWND owner, const std::wstring& path) {
  Choice choice{owner, std::vector<wchar_t>(longestPath), false};
  std::copy_n(path.begin(), std::min(path.size(), longestPath - 1), choice.path.begin());
  const WorkingDirectoryRestorer restoreAtEnd;
  DWORD id = 0;
  const HANDLE thread =
      isMultithreaded() ? CreateThread(nullptr, 0, chooseInApartment, &choice, 0, &id) : nullptr;
  if (thread != nullptr) {
    awaitChooser(thread, id, owner);
    CloseHandle(thread);
  } else {
    choose(choice);
  }
  return choice.chosen ? std::optional<std::wstring>(choice.path.data()) : std::nullopt;
}

}  // namespace radiashafts
