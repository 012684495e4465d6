#include "interface/win32/dialog_controls.h"

#include <commctrl.h>

namespace radiashafts {

ScreenMetrics screenMetrics() {
  return {GetSystemMetrics(SM_CXVIRTUALSCREEN), GetSystemMetrics(SM_CYVIRTUALSCREEN),
          GetSystemMetrics(SM_CXFULLSCREEN), GetSystemMetrics(SM_CYFULLSCREEN)};
}

RECT rectInDialog(HWND dialog, HWND control) {
  RECT rect{};
  GetWindowRect(control, &rect);
  MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&rect), 2);
  return rect;
}

RECT controlRect(HWND dialog, int id) {
  return rectInDialog(dialog, GetDlgItem(dialog, id));
}

bool DialogControls::hasFocus(int id) const {
  const HWND control = GetDlgItem(dialog_, id);
  return control != nullptr && GetFocus() == control;
}

// The label of a control, which has no number, stands before it and looks as it does.
void DialogControls::enable(int id, bool enabled) {
  const HWND control = GetDlgItem(dialog_, id);
  EnableWindow(control, enabled ? TRUE : FALSE);
  const HWND label = control != nullptr ? GetWindow(control, GW_HWNDPREV) : nullptr;
  if (label != nullptr && GetDlgCtrlID(label) == -1) EnableWindow(label, enabled ? TRUE : FALSE);
}

void DialogControls::show(int id, bool visible) {
  ShowWindow(GetDlgItem(dialog_, id), visible ? SW_SHOW : SW_HIDE);
}

void DialogControls::invalidate(int id) {
  const RECT rect = controlRect(dialog_, id);
  RedrawWindow(dialog_, &rect, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
}

std::string DialogControls::text(int id) const {
  char text[51];
  const UINT length = GetDlgItemTextA(dialog_, id, text, sizeof text);
  return std::string(text, length);
}

void DialogControls::setText(int id, const std::string& text) {
  SetDlgItemTextA(dialog_, id, text.c_str());
}

void DialogControls::setSliderRange(int id, int minimum, int maximum, int page) {
  send(id, TBM_SETRANGEMIN, FALSE, minimum);
  send(id, TBM_SETRANGEMAX, TRUE, maximum);
  send(id, TBM_SETPAGESIZE, 0, page);
}

int DialogControls::sliderPosition(int id) const {
  return static_cast<int>(send(id, TBM_GETPOS));
}

void DialogControls::setSliderPosition(int id, int position, bool redraw) {
  send(id, TBM_SETPOS, redraw ? TRUE : FALSE, position);
}

bool DialogControls::isIndeterminate(int id) const {
  return send(id, BM_GETCHECK) == BST_INDETERMINATE;
}

bool DialogControls::isChecked(int id) const {
  return send(id, BM_GETCHECK) == BST_CHECKED;
}

void DialogControls::setChecked(int id, bool checked) {
  send(id, BM_SETCHECK, checked ? BST_CHECKED : BST_UNCHECKED);
}

int DialogControls::selectedEntry(int id) const {
  return static_cast<int>(send(id, CB_GETCURSEL));
}

// Filled only once, since the entries never change: a list that is dropped down stays open.
void DialogControls::setEntries(int id, const std::vector<std::string>& entries, int selected) {
  if (send(id, CB_GETCOUNT) != static_cast<LRESULT>(entries.size())) {
    send(id, CB_RESETCONTENT);
    for (const std::string& entry : entries) {
      send(id, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(entry.c_str()));
    }
  }
  send(id, CB_SETCURSEL, static_cast<WPARAM>(selected));
}

bool isClass(HWND control, const char* name) {
  char found[16] = "";
  return GetClassNameA(control, found, sizeof found) != 0 && lstrcmpiA(found, name) == 0;
}

bool isEdit(HWND control) {
  return isClass(control, "Edit");
}

bool isFirstPress(LPARAM parameter) {
  constexpr LPARAM wasDownBefore = 1L << 30;
  return (parameter & wasDownBefore) == 0;
}

int labelledControl(HWND window) {
  if ((GetWindowLongA(window, GWL_STYLE) & SS_NOTIFY) == 0 || GetDlgCtrlID(window) != -1) return 0;
  do {
    window = GetWindow(window, GW_HWNDNEXT);
  } while (window != nullptr && GetDlgCtrlID(window) == -1);
  return window == nullptr ? 0 : GetDlgCtrlID(window);
}

void enableControl(HWND dialog, int id, bool enabled) {
  const HWND control = GetDlgItem(dialog, id);
  if (!enabled && control != nullptr && GetFocus() == control) {
    SendMessageA(dialog, WM_NEXTDLGCTL, 0, FALSE);
  }
  if (enabled != (IsWindowEnabled(control) != FALSE)) EnableWindow(control, enabled ? TRUE : FALSE);
}

}  // namespace radiashafts
