// Handles the mouse and the arrow keys in the preview: the left button drags the light or the split
// line, the right button pans the picture, and the active pipette reads colours.
#pragma once

#include <optional>

#include "interface/model/parameter_editing.h"
#include "interface/model/preview_view.h"

namespace radiashafts {

// What a press of the left button will do, or what a drag does.
enum class PreviewCursor { cross, openHand, closedHand, splitLine, pipette };

class PreviewPointer {
 public:
  PreviewPointer(DialogWindows& windows, PreviewView& view, ParameterEditing& editing)
      : windows_(windows), view_(view), editing_(editing) {}
  PreviewPointer(const PreviewPointer&) = delete;
  PreviewPointer& operator=(const PreviewPointer&) = delete;

  void cancelDrag();
  PreviewCursor cursorAt(Point point, bool showsHandle) const;

  // Points are in the preview's client area. A left press in the frame moves the light there,
  // unless it is on the split line.
  void OnLeftDown(Point point);
  void OnLeftUp();
  void OnRightDown(Point point);
  void OnRightUp();
  void OnMove(Point point);
  // Ends a drag of the light or the split line and undoes it. False when there is none.
  bool takeBackDrag();
  // Moves the light by screen pixels, as a step of the history or as a part of the last one.
  void moveLight(Point by, bool isNewStep);

 private:
  bool isInFrame(Point point) const;
  bool isOnSplit(Point point) const;
  void dragOriginTo(Point point);
  void showPosition(Point point);

  DialogWindows& windows_;
  PreviewView& view_;
  ParameterEditing& editing_;
  pfParameterPosition* draggedOrigin_ = nullptr;
  struct SplitDrag {
    int start;   // x of the press
    int column;  // of the line before
  };
  std::optional<SplitDrag> splitDrag_;
  bool leftDrag_ = false;
  bool panActive_ = false;
  Point rightDown_;
  Point panStart_;
};

}  // namespace radiashafts
