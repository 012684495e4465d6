// The resizable preview.
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
#include "interface/win32/pipette_cursor.h"
#include "interface/win32/preview_painting.h"

namespace radiashafts {

class PreviewDialog final : public Dialog {
 public:
  PreviewDialog(PreviewView& view, ParameterEditing& editing, PreviewPointer& pointer,
                const PipetteCursor& pipette)
      : view_(view), editing_(editing), pointer_(pointer), pipette_(pipette) {}

  // The dialog that takes the preview's keys: it has no controls of its own.
  void forwardKeysTo(HWND dialog) { keyboard_ = dialog; }
  // Gives up the owner, whose thread would have to look at messages when the preview is destroyed.
  void leaveOwner();
  void release() { painting_.release(); }

  bool showsHandle() const { return bShowHandle; }
  void showHandle(bool show);

  Extent frameSize() const;
  void invalidateFrame();
  void paintNow() { UpdateWindow(window()); }
  void bitmapChanged() { painting_.forgetBitmap(); }
  void setCaption(const std::string& text) { SetWindowTextA(window(), text.c_str()); }
  void captureMouse() { SetCapture(window()); }
  void releaseMouse();
  // Of a point of the client area; none where it cannot be read.
  std::optional<std::array<std::uint8_t, 3>> screenColor(Point point) const;

 private:
  INT_PTR onMessage(UINT message, WPARAM w, LPARAM l) override;
  void onOpen();
  void onDestroy();
  void onSize();
  void onKey(WPARAM key);
  void PaintPreview();

  PreviewView& view_;
  ParameterEditing& editing_;
  PreviewPointer& pointer_;
  const PipetteCursor& pipette_;
  PreviewPainting painting_;
  HWND keyboard_ = nullptr;
  bool bShowHandle = true;
  bool releasing_ = false;  // the mouse, by our own call
};

}  // namespace radiashafts
