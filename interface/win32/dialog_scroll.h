// The vertical scroll bar of a dialog that is lower than its contents.
#pragma once

#include <windows.h>

namespace radiashafts {

class DialogScroll {
 public:
  // The contents are as high as the client area is now.
  void attach(HWND dialog);
  // Widens the dialog by the bar.
  void makeRoomForBar();
  // The contents have become larger or smaller by to / from.
  void scale(int from, int to);
  // Called when the size has changed: shows or hides the bar.
  void update();

  void onBar(int code);  // a SB_ code of WM_VSCROLL
  void onWheel(int delta);
  // Scrolls to a control of the dialog; others are ignored.
  void show(HWND control);

 private:
  int visibleHeight() const;
  void scrollTo(int position);

  HWND dialog_ = nullptr;
  int contents_ = 0;  // height in pixels
  int position_ = 0;  // the contents' row at the top of the client area
};

}  // namespace radiashafts
