#include "interface/win32/preset_controls.h"

#include <array>

#include "interface/model/preset_path.h"
#include "interface/win32/dialog_controls.h"
#include "interface/win32/dialog_font.h"
#include "interface/win32/dialog_ids.h"
#include "interface/win32/file_chooser.h"
#include "interface/win32/interface_end.h"
#include "interface/win32/visual_style.h"
#include "platform/whole_file.h"

namespace radiashafts {
namespace {

using Text = std::array<char, 256>;

// RAII: surrounds a prompt over the parameter dialog. The preview, its owner, takes no input
// meanwhile; afterwards the keyboard is where it was.
class Prompt {
 public:
  explicit Prompt(HWND dialog)
      : preview_(GetWindow(dialog, GW_OWNER)),
        previewRested_(EnableWindow(preview_, FALSE) != FALSE),
        focus_(GetFocus()) {}
  ~Prompt() {
    if (!previewRested_) EnableWindow(preview_, TRUE);
    if (IsWindowEnabled(focus_) != FALSE) SetFocus(focus_);
  }
  Prompt(const Prompt&) = delete;
  Prompt& operator=(const Prompt&) = delete;

 private:
  const SystemDialog loop_;
  HWND preview_;
  bool previewRested_;  // in another prompt
  HWND focus_;
};

std::wstring wideText(const std::string& text) {
  std::wstring wide(text.size(), L'\0');
  wide.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), wide.data(),
                          static_cast<int>(wide.size()))));
  return wide;
}

// The path in another form of the system's; itself where there is no such file.
template <DWORD(WINAPI* convert)(const wchar_t*, wchar_t*, DWORD)>
std::wstring converted(const std::wstring& path) {
  std::wstring other(convert(path.c_str(), nullptr, 0), L'\0');
  other.resize(convert(path.c_str(), other.data(), static_cast<DWORD>(other.size())));
  return other.empty() ? path : other;
}

std::wstring longForm(const std::wstring& path) {
  return converted<GetLongPathNameW>(path);
}

// Of a file that does not exist yet, that of its folder.
std::wstring shortForm(const std::wstring& path) {
  std::wstring whole = converted<GetShortPathNameW>(path);
  const std::size_t name = path.rfind(L'\\');
  if (whole != path || name == std::wstring::npos) return whole;
  return converted<GetShortPathNameW>(path.substr(0, name)) + path.substr(name);
}

struct SaveAsRequest {
  PresetRow* row;
  std::string proposed;
  std::string confirmed;  // empty until OK; the interface's end closes the dialog without a button
  DialogFont font;
};

INT_PTR SaveAsProcedure(HWND dialog, UINT message, WPARAM w, LPARAM l) {
  const HWND edit = GetDlgItem(dialog, ID_SETTING_NAME);
  const auto selectName = [edit] {
    SetFocus(edit);
    SendMessageA(edit, EM_SETSEL, 0, -1);
  };
  if (message == WM_INITDIALOG) {
    auto& request = *reinterpret_cast<SaveAsRequest*>(l);
    SetWindowLongPtrA(dialog, DWLP_USER, l);
    request.font.apply(dialog);
    SendMessageA(edit, EM_LIMITTEXT, Text().size() - 1, 0);
    SetWindowTextA(edit, request.proposed.c_str());
    selectName();
    return FALSE;
  }
  if (message != WM_COMMAND || HIWORD(w) != BN_CLICKED) return FALSE;
  auto* request = reinterpret_cast<SaveAsRequest*>(GetWindowLongPtrA(dialog, DWLP_USER));
  if (LOWORD(w) == IDOK) {
    Text text{};
    GetWindowTextA(edit, text.data(), static_cast<int>(text.size()));
    for (char& character : text) character = character == ' ' ? '_' : character;
    SetWindowTextA(edit, text.data());
    EnableWindow(dialog, FALSE);  // a message box of the row has the parameter dialog as owner
    const auto name = request->row->confirmName(text.data());
    EnableWindow(GetWindow(dialog, GW_OWNER), FALSE);  // the message box may have enabled it
    EnableWindow(dialog, TRUE);
    SetForegroundWindow(dialog);
    if (name) {
      request->confirmed = *name;
      EndDialog(dialog, 0);
    } else {
      selectName();
    }
    return TRUE;
  }
  if (LOWORD(w) == IDCANCEL) {
    EndDialog(dialog, 0);
    return TRUE;
  }
  return FALSE;
}

}  // namespace

LRESULT PresetControlsWin32::send(UINT message, WPARAM w, LPARAM l) const {
  return SendDlgItemMessageA(dialog_.window(), ID_PRESETS, message, w, l);
}

int PresetControlsWin32::selectedPreset() const {
  return static_cast<int>(send(CB_GETCURSEL));
}

std::optional<std::string> PresetControlsWin32::presetName(int index) const {
  Text text{};
  const auto place = static_cast<WPARAM>(index);
  const LRESULT length = send(CB_GETLBTEXTLEN, place);
  if (length < 0 || length >= static_cast<LRESULT>(text.size()) - 1) return std::nullopt;
  send(CB_GETLBTEXT, place, reinterpret_cast<LPARAM>(text.data()));
  return text.data();
}

std::string PresetControlsWin32::shownPreset() const {
  Text text{};
  GetDlgItemTextA(dialog_.window(), ID_PRESETS, text.data(), static_cast<int>(text.size()));
  return text.data();
}

void PresetControlsWin32::clearPresets() {
  send(CB_RESETCONTENT);
}

void PresetControlsWin32::addPreset(const std::string& name) {
  send(CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(name.c_str()));
}

int PresetControlsWin32::findPreset(const std::string& name) const {
  return static_cast<int>(
      send(CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(name.c_str())));
}

void PresetControlsWin32::selectPreset(int index) {
  send(CB_SETCURSEL, static_cast<WPARAM>(index));
}

void PresetControlsWin32::enablePresets(bool choosing, bool saving, bool deleting) {
  enableControl(dialog_.window(), ID_PRESETS, choosing);
  enableControl(dialog_.window(), ID_SAVE_PRESET, saving);
  enableControl(dialog_.window(), ID_DELETE_PRESET, deleting);
}

// The file need not exist; a new name creates a new file.
std::optional<std::string> PresetControlsWin32::choosePresetFile(const std::string& path) {
  const Prompt prompt(dialog_.window());
  const auto file = radiashafts::choosePresetFile(dialog_.window(), longForm(wideText(path)));
  if (!file) return std::nullopt;
  const auto narrow = platform::narrowPath(*file);
  const PresetPath kept =
      presetPath(narrow, narrow ? std::nullopt : platform::narrowPath(shortForm(*file)));
  if (!kept.text.empty()) return kept.text;
  const std::wstring text =
      L"The presets file " + *file + L" cannot be used: " + wideText(kept.fault);
  MessageBoxW(dialog_.window(), text.c_str(), L"Error", MB_OK | MB_ICONEXCLAMATION);
  return std::nullopt;
}

std::string PresetControlsWin32::askPresetName(const std::string& proposed) {
  if (dialog_.window() == nullptr) return {};
  SaveAsRequest request{&row_, proposed, {}, {}};
  const Prompt prompt(dialog_.window());
  const INT_PTR result =
      DialogBoxParamA(moduleInstance(), MAKEINTRESOURCEA(ID_SAVE_AS_DIALOG), dialog_.window(),
                      windowProcedure<SaveAsProcedure>, reinterpret_cast<LPARAM>(&request));
  return result == -1 ? std::string() : request.confirmed;
}

bool PresetControlsWin32::confirm(const char* text, const char* caption) {
  const Prompt prompt(dialog_.window());
  return MessageBoxA(dialog_.window(), text, caption, MB_YESNO | MB_ICONQUESTION) == IDYES;
}

void PresetControlsWin32::showError(const std::string& text, const char* caption) {
  const Prompt prompt(dialog_.window());
  MessageBoxA(dialog_.window(), text.c_str(), caption, MB_OK | MB_ICONEXCLAMATION);
}

}  // namespace radiashafts
