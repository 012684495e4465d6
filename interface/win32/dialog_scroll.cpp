#include "interface/win32/dialog_scroll.h"

#include <algorithm>

namespace radiashafts {
namespace {

constexpr int line = 24;  // pixels

}  // namespace

void DialogScroll::attach(HWND dialog) {
  dialog_ = dialog;
  position_ = 0;
  contents_ = visibleHeight();
}

int DialogScroll::visibleHeight() const {
  RECT client{};
  GetClientRect(dialog_, &client);
  return client.bottom;
}

void DialogScroll::makeRoomForBar() {
  RECT rect{};
  GetWindowRect(dialog_, &rect);
  SetWindowPos(dialog_, nullptr, 0, 0, rect.right - rect.left + GetSystemMetrics(SM_CXVSCROLL),
               rect.bottom - rect.top, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

void DialogScroll::scale(int from, int to) {
  contents_ = MulDiv(contents_, to, std::max(from, 1));
  position_ = MulDiv(position_, to, std::max(from, 1));
  update();
}

void DialogScroll::update() {
  if (dialog_ == nullptr || visibleHeight() == 0) return;  // minimised
  SCROLLINFO info{};
  info.cbSize = sizeof info;
  info.fMask = SIF_RANGE | SIF_PAGE;
  info.nMax = contents_ - 1;
  info.nPage = static_cast<UINT>(visibleHeight());
  SetScrollInfo(dialog_, SB_VERT, &info, TRUE);
  scrollTo(position_);
}

void DialogScroll::onBar(int code) {
  SCROLLINFO info{};
  info.cbSize = sizeof info;
  info.fMask = SIF_TRACKPOS;
  GetScrollInfo(dialog_, SB_VERT, &info);
  switch (code) {
    case SB_LINEUP:
      return scrollTo(position_ - line);
    case SB_LINEDOWN:
      return scrollTo(position_ + line);
    case SB_PAGEUP:
      return scrollTo(position_ - visibleHeight());
    case SB_PAGEDOWN:
      return scrollTo(position_ + visibleHeight());
    case SB_THUMBTRACK:
    case SB_THUMBPOSITION:
      return scrollTo(info.nTrackPos);
    case SB_TOP:
      return scrollTo(0);
    case SB_BOTTOM:
      return scrollTo(contents_);
    default:
      return;
  }
}

void DialogScroll::onWheel(int delta) {
  constexpr int linesPerNotch = 3;
  scrollTo(position_ - delta * linesPerNotch * line / WHEEL_DELTA);
}

void DialogScroll::show(HWND control) {
  if (control == nullptr || GetParent(control) != dialog_) return;
  RECT rect{};
  GetWindowRect(control, &rect);
  MapWindowPoints(nullptr, dialog_, reinterpret_cast<POINT*>(&rect), 2);
  const int below = static_cast<int>(rect.bottom) - visibleHeight();
  if (below > 0) scrollTo(position_ + below + line);
  if (rect.top < 0) scrollTo(position_ + static_cast<int>(rect.top) - line);
}

void DialogScroll::scrollTo(int position) {
  position = std::clamp(position, 0, std::max(contents_ - visibleHeight(), 0));
  if (position == position_) return;
  ScrollWindowEx(dialog_, 0, position_ - position, nullptr, nullptr, nullptr, nullptr,
                 SW_SCROLLCHILDREN | SW_INVALIDATE | SW_ERASE);
  position_ = position;
  SetScrollPos(dialog_, SB_VERT, position, TRUE);
}

}  // namespace radiashafts
