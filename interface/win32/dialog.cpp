#include "interface/win32/dialog.h"

#include "diagnostics/debug_log.h"
#include "interface/model/preview_geometry.h"
#include "interface/win32/dialog_ids.h"
#include "interface/win32/dialog_scaling.h"
#include "interface/win32/visual_style.h"

namespace radiashafts {

void setIcon(HWND dialog) {
  const auto load = [](int metric) {
    const int side = GetSystemMetrics(metric);
    return reinterpret_cast<LPARAM>(LoadImageA(moduleInstance(), MAKEINTRESOURCEA(ID_DIALOG_ICON),
                                               IMAGE_ICON, side, side, LR_SHARED));
  };
  SendMessageA(dialog, WM_SETICON, ICON_SMALL, load(SM_CXSMICON));
  SendMessageA(dialog, WM_SETICON, ICON_BIG, load(SM_CXICON));
}

bool Dialog::create(int resource, HWND owner, const char* name) {
  destroying_ = false;
  window_ = CreateDialogParamA(moduleInstance(), MAKEINTRESOURCEA(resource), owner,
                               windowProcedure<procedure>, reinterpret_cast<LPARAM>(this));
  if (window_ == nullptr) {
    logLine(severityError, errorMarker, "Failed to create ", name, " Dialog. GetLastError(",
            GetLastError(), ")");
    return false;
  }
  setIcon(window_);
  return true;
}

void Dialog::destroy() {
  destroying_ = true;
  if (window_ != nullptr) DestroyWindow(window_);
  window_ = nullptr;
  font_.release();
}

bool Dialog::moveIntoWorkArea() {
  MONITORINFO monitor{};
  monitor.cbSize = sizeof monitor;
  RECT rect{};
  if (GetMonitorInfoA(MonitorFromWindow(window_, MONITOR_DEFAULTTONEAREST), &monitor) == FALSE ||
      GetWindowRect(window_, &rect) == FALSE) {
    return false;
  }
  const RECT& area = monitor.rcWork;
  const Box old{rect.left, rect.top, rect.right, rect.bottom};
  const Box box = movedInto({area.left, area.top, area.right, area.bottom}, old);
  if (box == old) return false;
  SetWindowPos(window_, nullptr, box.left, box.top, box.width(), box.height(),
               SWP_NOZORDER | SWP_NOACTIVATE);
  return box.height() < old.height();
}

Extent Dialog::clientSize() const {
  RECT rect{};
  GetClientRect(window_, &rect);
  return {rect.right, rect.bottom};
}

// The window takes the place that the system suggests. Where the system scales the controls too,
// its own procedure does both.
void Dialog::followScaling(WPARAM w, LPARAM l) {
  const auto& place = *reinterpret_cast<const RECT*>(l);
  const bool bySystem = isScaledBySystem(window_);
  const Extent before = clientSize();
  scaling_ = true;
  if (bySystem) {
    DefDlgProcA(window_, WM_DPICHANGED, w, l);
  } else {
    SetWindowPos(window_, nullptr, place.left, place.top, place.right - place.left,
                 place.bottom - place.top, SWP_NOZORDER | SWP_NOACTIVATE);
  }
  scaling_ = false;
  const Extent after = clientSize();
  onScaled(before, after, bySystem);
  if (!bySystem || font_.isApplied()) font_.scale(window_, before.height, after.height);
  InvalidateRect(window_, nullptr, TRUE);
}

// Controls of the system's library are told of new colours by their dialog only.
void Dialog::followColors(UINT message, WPARAM w, LPARAM l) {
  colors_.update();
  for (HWND child = GetWindow(window_, GW_CHILD); child != nullptr && message == WM_SYSCOLORCHANGE;
       child = GetWindow(child, GW_HWNDNEXT)) {
    SendMessageA(child, message, w, l);
  }
  RedrawWindow(window_, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

INT_PTR Dialog::procedure(HWND dialog, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrA(dialog, DWLP_USER, l);
    reinterpret_cast<Dialog*>(l)->window_ = dialog;
  }
  auto* self = reinterpret_cast<Dialog*>(GetWindowLongPtrA(dialog, DWLP_USER));
  if (self == nullptr) return FALSE;
  switch (message) {
    case WM_INITDIALOG:
      self->colors_.update();
      self->font_.apply(dialog);
      break;
    case WM_SETTINGCHANGE:
    case WM_SYSCOLORCHANGE:
      self->followColors(message, w, l);
      return FALSE;
    case WM_DPICHANGED:
      if (self->scaling_) return FALSE;  // within the system's own procedure
      self->followScaling(w, l);
      return TRUE;
    default:
      break;
  }
  return self->onMessage(message, w, l);
}

}  // namespace radiashafts
