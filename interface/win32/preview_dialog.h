// The resizable preview dialog.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "interface/model/parameter_editing.h"
#include "interface/model/preview_pointer.h"
#include "interface/model/preview_view.h"
#include "interface/win32/dialog.h"
#include "interface/win32/dialog_ids.h"
#include "interface/win32/module_cursor.h"
#include "interface/win32/pipette_cursor.h"
#include "interface/win32/preview_painting.h"
#include "interface/win32/wheel_notches.h"

namespace radiashafts {

class PreviewDialog final : public Dialog {
 public:
  PreviewDialog(PreviewView& view, ParameterEditing& editing, PreviewPointer& pointer,
                const PipetteCursor& pipette)
      : view_(view), editing_(editing), pointer_(pointer), pipette_(pipette) {}

  // The preview has no controls; it forwards Enter, Escape and Tab to this dialog.
  void forwardKeysTo(HWND dialog) { keyTarget_ = dialog; }
  // Removes the owner. Destroying a window waits for its owner's thread, which may not respond.
  void detachOwner();
  void loadCursors();
  void release();

  bool showsHandle() const { return bShowHandle; }
  void showHandle(bool show);
  // Lets go of the untouched picture when another window becomes active than the two dialogs.
  void onDeactivated(HWND next);

  Extent frameSize() const;
  int dotsPerInch() const { return dotsPerInch_; }  // of the last painting
  void invalidateFrame();
  void paintNow() { UpdateWindow(window()); }
  void setCaption(const std::string& text) { SetWindowTextA(window(), text.c_str()); }
  void captureMouse() { SetCapture(window()); }
  void releaseMouse();
  // The colour at a point of the client area; none when it cannot be read.
  std::optional<std::array<std::uint8_t, 3>> screenColor(Point point) const;

 private:
  INT_PTR onMessage(UINT message, WPARAM w, LPARAM l) override;
  void onOpen();
  void onDestroy();
  void onResized(bool isMaximized);
  void onSize();
  void onSizingEnd();
  void onKey(WPARAM key, bool isFirst);
  void onCharacter(WPARAM character);
  void onWheel(int delta, POINT point);
  void setCursor();
  void PaintPreview();

  PreviewView& view_;
  ParameterEditing& editing_;
  PreviewPointer& pointer_;
  const PipetteCursor& pipette_;
  PreviewPainting painting_;
  ModuleCursor openHand_{ID_OPEN_HAND_CURSOR};
  ModuleCursor closedHand_{ID_CLOSED_HAND_CURSOR};
  HWND keyTarget_ = nullptr;
  bool bShowHandle = true;
  int dotsPerInch_ = USER_DEFAULT_SCREEN_DPI;
  WheelNotches wheel_;
  bool isMaximized_ = false;
  // While the user moves or resizes the window: the frame's size before, where the picture fits it.
  std::optional<Extent> fittedBefore_;
  bool releasingMouse_ = false;  // set during our own ReleaseCapture
};

}  // namespace radiashafts
