#include "interface/win32/dialog.h"

#include "diagnostics/debug_log.h"
#include "interface/model/preview_geometry.h"
#include "interface/win32/dialog_ids.h"
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

INT_PTR Dialog::procedure(HWND dialog, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrA(dialog, DWLP_USER, l);
    reinterpret_cast<Dialog*>(l)->window_ = dialog;
  }
  auto* self = reinterpret_cast<Dialog*>(GetWindowLongPtrA(dialog, DWLP_USER));
  return self == nullptr ? FALSE : self->onMessage(message, w, l);
}

}  // namespace radiashafts
