// The preview's rendered view: scale, pan position, bitmap, and the render loop.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "hostapi/filter_record.h"
#include "interface/model/dialog_windows.h"
#include "interface/model/edited_filter.h"
#include "interface/model/preview_geometry.h"
#include "interface/model/preview_pixels.h"
#include "interface/model/view_scale.h"
#include "threads/thread_pool.h"

namespace radiashafts {

// A rendered picture as it is drawn: rows of 3-byte pixels, see BitmapOrder.
struct PreviewBitmap {
  std::uint8_t* pixels = nullptr;  // allocated by the filter; null for none
  Extent size;                     // with the padding at the ends of the rows
  Extent image;                    // the pixels that hold the picture
  unsigned drawing = 0;            // another number for every picture that was drawn
};

class PreviewView {
 public:
  explicit PreviewView(DialogWindows& windows) : windows_(windows) {}
  PreviewView(const PreviewView&) = delete;
  PreviewView& operator=(const PreviewView&) = delete;

  // The caller owns filter and record and keeps them valid until close.
  void open(EditedFilter* filter, hostapi::FilterRecord* record);
  void close();

  void RequestRender();
  // Enables the undo and redo buttons when the history has such steps.
  void UpdateUndoButtons();

  // Selects the scale at which the whole image is smaller than the frame.
  void FitScaleToFrame();
  void AssignScaleFactor(std::int32_t factor);
  // These take effect in the next RenderUntilFinal. The picture at the anchor, a point of the
  // frame, stays where it is; without one that in the middle does.
  void ZoomBy(std::int32_t steps);  // 1 is coarser
  void ZoomTo(std::int32_t factor, std::optional<Point> anchor = {});
  void ZoomToFit();
  // Whether the scale is that of FitScaleToFrame or ZoomToFit, and right for the frame's size.
  bool isFitted() const;

  bool needsRender() const;
  // Renders until the picture has full quality or a render fails. A render that a change has
  // cancelled is followed by a coarser draft, a completed draft by a full-quality render.
  void RenderUntilFinal();

  bool isOpen() const { return filter_ != nullptr; }
  EditedFilter& filter() const { return *filter_; }
  hostapi::FilterRecord& record() const { return *record_; }
  std::int32_t requestedFactor() const { return nRequestedFactor; }
  Extent imageSize() const { return {record_->imageSize.h, record_->imageSize.v}; }
  Extent renderedSize() const;
  int imagePixelsPerStep() const { return ViewScale{nFactor, nDraftLevel}.imagePixelsPerStep(); }

  // The caption tells this position, and the share of clipped pixels of the last render.
  void showPosition(const std::string& position);

  // With the current size of the frame and resolution of the screen.
  const PreviewGeometry& geometry();
  void panTo(Point pan);
  void limitPan();

  // Shows the picture as it came until the scale changes or show is false.
  void showUntouched(bool show);
  // Shows it left of a line in the frame, until show is false.
  void showSplit(bool show);
  void moveSplit(int column);
  // The last picture that was rendered, which may be that of another scale, or the untouched one;
  // null before the first.
  const PreviewBitmap* shownBitmap() const;
  // The untouched picture left of the split line; null without that line.
  const PreviewBitmap* splitBitmap() const;
  // Whether the host draws the bitmap, which determines the bitmap's pixel layout.
  bool hostDraws() const { return hostDraws_; }
  // Switches to the system's layout for a host that cannot draw; frees the shown bitmaps and
  // renders again.
  void disableHostDrawing();

 private:
  bool fetch(std::int32_t renderFactor);
  void keepAnchor(const PreviewGeometry& before);
  void renewBitmap();
  std::uint8_t* allocatePixels(std::uint32_t size);
  void retireBitmap();
  void freeBitmap(PreviewBitmap& bitmap);
  std::int16_t render();
  void DrawToPreview();
  void showClipped(const DrawnPixels& drawn);
  void showCaption();
  void drawUntouched();
  void dropUntouched();
  BitmapOrder bitmapOrder() const;

  DialogWindows& windows_;
  EditedFilter* filter_ = nullptr;
  hostapi::FilterRecord* record_ = nullptr;
  std::int32_t nFactor = 1;
  std::int32_t nRequestedFactor = 1;
  std::int32_t nDraftLevel = 0;
  std::int32_t nAppliedFactor = -1;  // reduction of the fetched image; -1 when there is none
  bool fits_ = false;                // the requested factor was not chosen by the user
  bool zoomOnlyPending_ = false;     // the pending render was requested by zooming only
  PreviewGeometry geometry_;
  // The last view at full quality. Drafts are derived from it and return to it, so that rounding
  // errors do not accumulate. Empty after a change of the view in a draft.
  struct FullQualityView {
    std::int32_t factor;
    PreviewGeometry geometry;
  };
  std::optional<FullQualityView> fullQualityView_;
  std::optional<ThreadPool::KeepRunning> workers_;  // set after the first render, since more follow
  PreviewBitmap bitmap_;                            // of the fetched image
  bool bBitmapValid = false;                        // it holds a picture
  PreviewBitmap former_;                            // shown until it does
  PreviewBitmap untouched_;                         // shown instead of both, or left of the line
  bool showsUntouched_ = false;                     // instead of both
  bool isSplit_ = false;
  unsigned drawings_ = 0;
  std::string position_;  // in the caption
  std::string clipped_;
  std::string caption_;
  std::optional<Point> anchor_;  // of the requested factor
  bool hostDraws_ = false;
};

}  // namespace radiashafts
