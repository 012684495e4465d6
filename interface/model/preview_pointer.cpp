#include "interface/model/preview_pointer.h"

#include "parameters/number_text.h"

namespace radiashafts {

void PreviewPointer::cancelDrag() {
  draggedOrigin_ = nullptr;
  splitDrag_.reset();
  leftDrag_ = false;
  panActive_ = false;
}

bool PreviewPointer::isInFrame(Point point) const {
  const Extent frame = windows_.frameSize();
  return point.x >= 0 && point.y >= 0 && point.x <= frame.width && point.y <= frame.height;
}

bool PreviewPointer::isOnSplit(Point point) const {
  return view_.splitBitmap() != nullptr && view_.geometry().isOnSplit(point);
}

PreviewCursor PreviewPointer::cursorAt(Point point, bool showsHandle) const {
  if (editing_.pipetteActive()) return PreviewCursor::pipette;
  if (panActive_ || draggedOrigin_ != nullptr) return PreviewCursor::closedHand;
  if (splitDrag_ || isOnSplit(point)) return PreviewCursor::splitLine;
  const pfParameterPosition* const origin = showsHandle ? editing_.FindOriginParameter() : nullptr;
  const bool isOnHandle = origin != nullptr && view_.geometry().isOnHandle(point, origin->value());
  return isOnHandle ? PreviewCursor::openHand : PreviewCursor::cross;
}

void PreviewPointer::OnLeftDown(Point point) {
  if (!view_.isOpen() || !isInFrame(point)) return;
  leftDrag_ = true;
  windows_.captureMouse();
  if (editing_.pipetteActive()) return;
  if (isOnSplit(point)) {
    splitDrag_ = {point.x, view_.geometry().splitColumn()};
    return;
  }
  draggedOrigin_ = editing_.FindOriginParameter();
  if (draggedOrigin_ == nullptr) return;
  view_.filter().undoHistory.PushStep(draggedOrigin_->CreateUndo());
  dragOriginTo(point);
}

void PreviewPointer::dragOriginTo(Point point) {
  const auto [x, y] = view_.geometry().clientToImage(point, draggedOrigin_->value());
  draggedOrigin_->SetValue(x, y);
  draggedOrigin_->NotifyWidget();
  view_.RequestRender();
}

bool PreviewPointer::takeBackDrag() {
  const std::optional<SplitDrag> splitDrag = splitDrag_;
  if (draggedOrigin_ == nullptr && !splitDrag) return false;
  cancelDrag();
  windows_.releaseMouse();
  if (splitDrag) {
    view_.moveSplit(splitDrag->column);
  } else {
    editing_.Undo();
  }
  return true;
}

void PreviewPointer::moveLight(Point by, bool isNewStep) {
  pfParameterPosition* const origin = view_.isOpen() ? editing_.FindOriginParameter() : nullptr;
  const Extent shown = view_.isOpen() ? view_.geometry().display() : Extent{};
  if (origin == nullptr || shown.width == 0 || shown.height == 0) return;
  if (isNewStep) view_.filter().undoHistory.PushStep(origin->CreateUndo());
  origin->SetValue(origin->x() + static_cast<double>(by.x) / shown.width,
                   origin->y() + static_cast<double>(by.y) / shown.height);
  origin->NotifyWidget();
  view_.RequestRender();
}

void PreviewPointer::OnLeftUp() {
  draggedOrigin_ = nullptr;
  splitDrag_.reset();
  leftDrag_ = false;
  windows_.releaseMouse();
  if (!editing_.pipetteActive()) return;
  editing_.deactivatePipette();
  view_.RequestRender();
}

void PreviewPointer::OnRightDown(Point point) {
  if (!view_.isOpen() || !isInFrame(point)) return;
  rightDown_ = point;
  panActive_ = true;
  view_.limitPan();
  panStart_ = view_.geometry().pan;
  windows_.captureMouse();
}

void PreviewPointer::OnRightUp() {
  panActive_ = false;
  windows_.releaseMouse();
  windows_.invalidateFrame();
}

void PreviewPointer::OnMove(Point point) {
  if (!view_.isOpen()) return;
  showPosition(point);
  if (panActive_) {
    const double scale = view_.geometry().viewScale;
    view_.panTo({wholePixels(panStart_.x - (point.x - rightDown_.x) * scale),
                 wholePixels(panStart_.y - (rightDown_.y - point.y) * scale)});
  }
  if (leftDrag_ && draggedOrigin_ != nullptr) dragOriginTo(point);
  if (splitDrag_) view_.moveSplit(splitDrag_->column + point.x - splitDrag_->start);
  if (editing_.pipetteActive()) {
    if (const auto color = windows_.screenColor(point)) editing_.applyPipetteColor(*color);
  }
}

// Shows the position in the caption, in pixels of the whole image with one decimal.
void PreviewPointer::showPosition(Point point) {
  const auto [x, y] = view_.geometry().clientToImage(point, {0.0, 0.0});
  const Extent image = view_.renderedSize();
  const int step = view_.imagePixelsPerStep();
  const auto tenths = [](double value) { return wholePixels(value * 10.0) * 0.1; };
  view_.showPosition("Preview:  x: " + numberText(tenths(x * image.width * step)) +
                     " y: " + numberText(tenths(y * image.height * step)));
}

}  // namespace radiashafts
