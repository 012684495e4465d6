// Handles the mouse and the arrow keys in the preview: the left button drags the light, the right
// button pans the picture, and the active pipette reads colours.
#pragma once

#include "interface/model/parameter_editing.h"
#include "interface/model/preview_view.h"

namespace radiashafts {

class PreviewPointer {
 public:
  PreviewPointer(DialogWindows& windows, PreviewView& view, ParameterEditing& editing)
      : windows_(windows), view_(view), editing_(editing) {}
  PreviewPointer(const PreviewPointer&) = delete;
  PreviewPointer& operator=(const PreviewPointer&) = delete;

  void cancelDrag();

  // Points are in the preview's client area. A left press in the frame moves the light there.
  void OnLeftDown(Point point);
  void OnLeftUp();
  void OnRightDown(Point point);
  void OnRightUp();
  void OnMove(Point point);
  // Ends a drag of the light and undoes it. False when there is none.
  bool takeBackDrag();
  // Moves the light by screen pixels, as a step of the history or as a part of the last one.
  void moveLight(Point by, bool isNewStep);

 private:
  bool isInFrame(Point point) const;
  void dragOriginTo(Point point);
  void showPosition(Point point);

  DialogWindows& windows_;
  PreviewView& view_;
  ParameterEditing& editing_;
  pfParameterPosition* draggedOrigin_ = nullptr;
  bool leftDrag_ = false;
  bool panActive_ = false;
  Point rightDown_;
  Point panStart_;
};

}  // namespace radiashafts
