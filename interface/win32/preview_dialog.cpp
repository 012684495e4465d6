// The preview dialog's messages.

#include <windows.h>

#include <algorithm>

#include <windowsx.h>

#include "interface/model/remembered_settings.h"
#include "interface/win32/dialog_ids.h"
#include "interface/win32/interface_end.h"
#include "interface/win32/preview_win32.h"

namespace radiashafts {

INT_PTR pfPreviewWin32::PreviewProcedure(HWND dialog, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrA(dialog, DWLP_USER, l);
    reinterpret_cast<pfPreviewWin32*>(l)->m_hPreview = dialog;
  }
  auto* self = reinterpret_cast<pfPreviewWin32*>(GetWindowLongPtrA(dialog, DWLP_USER));
  return self == nullptr ? FALSE : self->onPreviewMessage(message, w, l);
}

INT_PTR pfPreviewWin32::onPreviewMessage(UINT message, WPARAM w, LPARAM l) {
  const Point point{GET_X_LPARAM(l), GET_Y_LPARAM(l)};
  switch (message) {
    case WM_INITDIALOG:
      onPreviewOpens();
      return TRUE;
    case WM_DESTROY:
      onPreviewCloses();
      return TRUE;
    case WM_CLOSE:  // as Cancel
      interfaceEnd().ask(false);
      return TRUE;
    case WM_SIZE:
      if (w != SIZE_MINIMIZED) onSize();
      return TRUE;
    case WM_ERASEBKGND:  // painting covers everything
      SetWindowLongPtrA(m_hPreview, DWLP_MSGRESULT, TRUE);
      return TRUE;
    case WM_PAINT:
      PaintPreview();
      return TRUE;
    case WM_SETCURSOR:
      if (LOWORD(l) != HTCLIENT || !setCursor()) return FALSE;
      SetWindowLongPtrA(m_hPreview, DWLP_MSGRESULT, TRUE);
      return TRUE;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
      pointer_.OnLeftDown({LOWORD(l), HIWORD(l)});
      return TRUE;
    case WM_LBUTTONUP:
      pointer_.OnLeftUp();
      return TRUE;
    case WM_RBUTTONDOWN:
    case WM_RBUTTONDBLCLK:
      pointer_.OnRightDown(point);
      return TRUE;
    case WM_RBUTTONUP:
      pointer_.OnRightUp();
      return TRUE;
    case WM_MOUSEMOVE:
      pointer_.OnMove(point);
      return TRUE;
    case WM_CAPTURECHANGED:
      if (!releasing_ && reinterpret_cast<HWND>(l) != m_hPreview) pointer_.letGo();
      return TRUE;
    // The keyboard stays with the dialog itself: its one child, hidden, would take it and keep it.
    case WM_ACTIVATE:
      if (LOWORD(w) != WA_INACTIVE) SetFocus(m_hPreview);
      return TRUE;
    case WM_SETFOCUS:
      return TRUE;
    case WM_KEYDOWN:
      onKey(w);
      return TRUE;
    default:
      return FALSE;
  }
}

void pfPreviewWin32::onPreviewOpens() {
  ReadDebugSwitches();
  const PreviewWindow window = ReadPreviewWindow(screenMetrics());
  // In two steps: on a monitor of another scaling the system resizes what is moved there.
  SetWindowPos(m_hPreview, nullptr, window.x, window.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  SetWindowPos(m_hPreview, nullptr, 0, 0, window.width, window.height, SWP_NOMOVE | SWP_NOZORDER);
  onSize();  // also where that was its size before
  if (window.startsMaximized()) ShowWindow(m_hPreview, SW_MAXIMIZE);
}

void pfPreviewWin32::onPreviewCloses() {
  WINDOWPLACEMENT placement{};
  placement.length = sizeof placement;
  if (GetWindowPlacement(m_hPreview, &placement) != FALSE) {
    const RECT& rect = placement.rcNormalPosition;
    WritePreviewWindow({rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top,
                        static_cast<std::int32_t>(placement.showCmd)});
  }
  onDestroyed();
}

// The frame fills the client area.
void pfPreviewWin32::onSize() {
  constexpr int smallest = 100;  // of the window's sides
  RECT window{};
  GetWindowRect(m_hPreview, &window);
  const int width = std::max<int>(window.right - window.left, smallest);
  const int height = std::max<int>(window.bottom - window.top, smallest);
  if (width != window.right - window.left || height != window.bottom - window.top) {
    MoveWindow(m_hPreview, window.left, window.top, width, height, TRUE);
  }
  RECT client{};
  GetClientRect(m_hPreview, &client);
  MoveWindow(GetDlgItem(m_hPreview, ID_PREVIEW_FRAME), 0, 0, client.right, client.bottom, FALSE);
  invalidateFrame();
}

// The preview has no controls: its keys are the parameter dialog's.
void pfPreviewWin32::onKey(WPARAM key) {
  if (key == VK_RETURN) PostMessageA(m_hInterface, WM_COMMAND, IDOK, 0);
  if (key == VK_ESCAPE) PostMessageA(m_hInterface, WM_COMMAND, IDCANCEL, 0);
  if (key == VK_TAB) SetActiveWindow(m_hInterface);
}

void pfPreviewWin32::PaintPreview() {
  const PaintContext context(m_hPreview);
  if (!view_.isOpen()) return;
  std::optional<std::array<double, 2>> light;
  const pfParameterPosition* origin = editing_.FindOriginParameter();
  if (bShowHandle && origin != nullptr) light = origin->value();
  painting_.paint(context.get(), view_, light);
}

}  // namespace radiashafts
