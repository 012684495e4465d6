#include "interface/win32/preview_dialog.h"

#include <algorithm>
#include <utility>

#include <windowsx.h>

#include "interface/model/remembered_settings.h"
#include "interface/win32/dialog_controls.h"
#include "interface/win32/dialog_ids.h"
#include "interface/win32/window_place.h"

namespace radiashafts {

INT_PTR PreviewDialog::onMessage(UINT message, WPARAM w, LPARAM l) {
  const Point point{GET_X_LPARAM(l), GET_Y_LPARAM(l)};
  switch (message) {
    case WM_INITDIALOG:
      onOpen();
      return TRUE;
    case WM_DESTROY:
      onDestroy();
      return TRUE;
    case WM_CLOSE:  // as Cancel
      interfaceEnd().request(false);
      return TRUE;
    case WM_SIZE:
      if (w != SIZE_MINIMIZED) onResized(w == SIZE_MAXIMIZED);
      return TRUE;
    case WM_ENTERSIZEMOVE:
      fittedBefore_.reset();
      if (view_.isOpen() && view_.isFitted()) fittedBefore_ = frameSize();
      return TRUE;
    case WM_EXITSIZEMOVE:
      onSizingEnd();
      return TRUE;
    case WM_ERASEBKGND:  // not needed: WM_PAINT covers the whole client area
      setResult(TRUE);
      return TRUE;
    case WM_PAINT:
      PaintPreview();
      return TRUE;
    case WM_SETCURSOR:
      if (LOWORD(l) != HTCLIENT || !view_.isOpen()) return FALSE;
      setCursor();
      setResult(TRUE);
      return TRUE;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONDBLCLK:
      pointer_.OnLeftDown({LOWORD(l), HIWORD(l)});
      setCursor();
      return TRUE;
    case WM_LBUTTONUP:
      pointer_.OnLeftUp();
      setCursor();
      return TRUE;
    case WM_RBUTTONDOWN:
    case WM_RBUTTONDBLCLK:
      pointer_.OnRightDown(point);
      setCursor();
      return TRUE;
    case WM_RBUTTONUP:
      pointer_.OnRightUp();
      setCursor();
      return TRUE;
    case WM_MOUSEMOVE:
      pointer_.OnMove(point);
      return TRUE;
    case WM_CAPTURECHANGED:
      if (!releasingMouse_ && reinterpret_cast<HWND>(l) != window()) pointer_.cancelDrag();
      return TRUE;
    // The focus stays at the dialog itself, or its only child, which is hidden, would get and keep
    // it.
    case WM_ACTIVATE:
      if (LOWORD(w) != WA_INACTIVE) {
        SetFocus(window());
      } else {
        onDeactivated(reinterpret_cast<HWND>(l));
      }
      return TRUE;
    case WM_SETFOCUS:
      return TRUE;
    case WM_KEYDOWN:
      onKey(w, isFirstPress(l));
      return TRUE;
    case WM_CHAR:
      onCharacter(w);
      return TRUE;
    case WM_MBUTTONDOWN:
    case WM_MBUTTONUP:
      view_.showUntouched(message == WM_MBUTTONDOWN);
      return TRUE;
    case WM_MOUSEWHEEL:
      onWheel(GET_WHEEL_DELTA_WPARAM(w), {point.x, point.y});
      return TRUE;
    default:
      return FALSE;
  }
}

void PreviewDialog::onOpen() {
  isMaximized_ = false;
  fittedBefore_.reset();
  ReadDebugSwitches();
  const PreviewPlacement placement = ReadPreviewPlacement(screenMetrics());
  // Position first, then size: moving to a monitor with another scaling makes the system resize.
  SetWindowPos(window(), nullptr, placement.x, placement.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  SetWindowPos(window(), nullptr, 0, 0, placement.width, placement.height,
               SWP_NOMOVE | SWP_NOZORDER);
  moveIntoWorkArea();
  onSize();  // the system sends no WM_SIZE when the size stays the same
  if (placement.startsMaximized()) ShowWindow(window(), SW_MAXIMIZE);
}

void PreviewDialog::onDestroy() {
  if (const auto place = windowPlace(window())) {
    const Box& box = place->normal;
    WritePreviewPlacement(
        {box.left, box.top, box.width(), box.height(), static_cast<std::int32_t>(place->state)});
  }
  onWindowDestroyed();
}

// A picture that fits the frame is fitted again when the user maximizes the window or restores it.
void PreviewDialog::onResized(bool isMaximized) {
  const bool isSwitch = std::exchange(isMaximized_, isMaximized) != isMaximized;
  const bool isFitted = isSwitch && view_.isOpen() && view_.isFitted();
  onSize();
  if (isFitted) view_.ZoomToFit();
}

void PreviewDialog::onSizingEnd() {
  const std::optional<Extent> before = std::exchange(fittedBefore_, std::nullopt);
  if (before && view_.isOpen() && frameSize() != *before) view_.ZoomToFit();
}

// The frame fills the client area.
void PreviewDialog::onSize() {
  constexpr int smallest = 100;  // width and height of the window, in pixels
  RECT outer{};
  GetWindowRect(window(), &outer);
  const int width = std::max<int>(outer.right - outer.left, smallest);
  const int height = std::max<int>(outer.bottom - outer.top, smallest);
  if (width != outer.right - outer.left || height != outer.bottom - outer.top) {
    MoveWindow(window(), outer.left, outer.top, width, height, TRUE);
  }
  RECT client{};
  GetClientRect(window(), &client);
  MoveWindow(GetDlgItem(window(), ID_PREVIEW_FRAME), 0, 0, client.right, client.bottom, FALSE);
  invalidateFrame();
}

void PreviewDialog::onKey(WPARAM key, bool isFirst) {
  const int step = GetKeyState(VK_SHIFT) < 0 ? 10 : 1;  // preview pixels
  switch (key) {
    case VK_RETURN:
      PostMessageA(keyTarget_, WM_COMMAND, IDOK, 0);
      return;
    case VK_ESCAPE:
      if (!pointer_.takeBackDrag()) PostMessageA(keyTarget_, WM_COMMAND, IDCANCEL, 0);
      return;
    case VK_TAB:
      SetActiveWindow(keyTarget_);
      return;
    case VK_LEFT:
      return pointer_.moveLight({-step, 0}, isFirst);
    case VK_RIGHT:
      return pointer_.moveLight({step, 0}, isFirst);
    case VK_UP:
      return pointer_.moveLight({0, -step}, isFirst);
    case VK_DOWN:
      return pointer_.moveLight({0, step}, isFirst);
    default:
      return;
  }
}

void PreviewDialog::onCharacter(WPARAM character) {
  if (character == '+') view_.ZoomBy(-1);
  if (character == '-') view_.ZoomBy(1);
  if (character == '0') view_.ZoomToFit();
  if (character == '1') view_.ZoomTo(1);
}

// The point is on the screen.
void PreviewDialog::onWheel(int delta, POINT point) {
  const int notches = wheel_.turn(delta);
  ScreenToClient(window(), &point);
  if (notches != 0) view_.ZoomTo(view_.requestedFactor() - notches, Point{point.x, point.y});
}

// The one for where the pointer is.
void PreviewDialog::setCursor() {
  POINT point{};
  GetCursorPos(&point);
  ScreenToClient(window(), &point);
  const auto set = [](HCURSOR cursor, LPCSTR otherwise) {
    SetCursor(cursor != nullptr ? cursor : LoadCursorA(nullptr, otherwise));
  };
  switch (pointer_.cursorAt({point.x, point.y}, bShowHandle)) {
    case PreviewCursor::pipette:
      if (!pipette_.set()) set(nullptr, IDC_CROSS);
      break;
    case PreviewCursor::openHand:
      set(openHand_.get(), IDC_HAND);
      break;
    case PreviewCursor::closedHand:
      set(closedHand_.get(), IDC_SIZEALL);
      break;
    case PreviewCursor::splitLine:
      set(nullptr, IDC_SIZEWE);
      break;
    case PreviewCursor::cross:
      set(nullptr, IDC_CROSS);
      break;
  }
}

void PreviewDialog::loadCursors() {
  openHand_.load();
  closedHand_.load();
}

void PreviewDialog::release() {
  painting_.release();
  openHand_.release();
  closedHand_.release();
}

void PreviewDialog::PaintPreview() {
  const PaintContext context(window());
  if (!view_.isOpen()) return;
  if (const int dots = GetDeviceCaps(context.get(), LOGPIXELSX); dots > 0) dotsPerInch_ = dots;
  std::optional<std::array<double, 2>> light;
  const pfParameterPosition* origin = editing_.FindOriginParameter();
  if (bShowHandle && origin != nullptr) light = origin->value();
  painting_.paint(context.get(), view_, light, colors().margin());
}

void PreviewDialog::onDeactivated(HWND next) {
  if (view_.isOpen() && next != window() && next != keyTarget_) view_.showUntouched(false);
}

void PreviewDialog::showHandle(bool show) {
  bShowHandle = show;
  invalidateFrame();
}

void PreviewDialog::detachOwner() {
  if (window() != nullptr) SetWindowLongPtrA(window(), GWLP_HWNDPARENT, 0);
}

Extent PreviewDialog::frameSize() const {
  const RECT rect = controlRect(window(), ID_PREVIEW_FRAME);
  return {rect.right - rect.left, rect.bottom - rect.top};
}

void PreviewDialog::invalidateFrame() {
  if (window() == nullptr) return;
  const RECT rect = controlRect(window(), ID_PREVIEW_FRAME);
  InvalidateRect(window(), &rect, FALSE);
}

void PreviewDialog::releaseMouse() {
  if (window() == nullptr || GetCapture() != window()) return;
  releasingMouse_ = true;
  ReleaseCapture();
  releasingMouse_ = false;
}

std::optional<std::array<std::uint8_t, 3>> PreviewDialog::screenColor(Point point) const {
  const HDC context = GetDC(window());
  const COLORREF color = GetPixel(context, point.x, point.y);
  ReleaseDC(window(), context);
  if (color == CLR_INVALID) return std::nullopt;
  return std::array<std::uint8_t, 3>{GetRValue(color), GetGValue(color), GetBValue(color)};
}

}  // namespace radiashafts
