// The rendered view of the picture: its scale, its bitmap, and the renders that bring it up to
// date.
#pragma once

#include <cstdint>
#include <optional>

#include "hostapi/filter_record.h"
#include "interface/model/dialog_windows.h"
#include "interface/model/edited_filter.h"
#include "interface/model/preview_geometry.h"
#include "interface/model/view_scale.h"
#include "threads/thread_pool.h"

namespace radiashafts {

class PreviewView {
 public:
  explicit PreviewView(DialogWindows& windows) : windows_(windows) {}
  PreviewView(const PreviewView&) = delete;
  PreviewView& operator=(const PreviewView&) = delete;

  // From open to close the filter and the record stand.
  void open(EditedFilter* filter, hostapi::FilterRecord* record);
  void close();

  void RequestRender();
  // undo and redo are enabled by what the history holds.
  void UpdateUndoButtons();

  // Chooses the scale at which the whole image is smaller than the frame.
  void FitScaleToFrame();
  void AssignScaleFactor(std::int32_t factor);
  void ZoomBy(std::int32_t steps);  // taken up by the next RenderUntilFinal; 1 is coarser

  bool needsRender() const;
  // Renders until a picture at full quality stands or a render fails. A render that a change
  // overtakes is followed by a coarser one, a coarser one by one at full quality.
  void RenderUntilFinal();

  bool isOpen() const { return filter_ != nullptr; }
  EditedFilter& filter() const { return *filter_; }
  hostapi::FilterRecord& record() const { return *record_; }
  std::int32_t requestedFactor() const { return nRequestedFactor; }
  Extent imageSize() const { return {record_->imageSize.h, record_->imageSize.v}; }
  Extent renderedSize() const;
  int imagePixelsPerStep() const { return ViewScale{nFactor, nDraftLevel}.imagePixelsPerStep(); }

  // With the frame's present size.
  const PreviewGeometry& geometry();
  void panTo(Point pan);
  void limitPan();

  bool hasBitmap() const { return bBitmapValid; }
  const std::uint8_t* bitmap() const { return bitmap_; }
  Extent bitmapSize() const { return {nBitmapWidth, nBitmapHeight}; }
  // Whether the host brings the bitmap to the screen; the bitmap's order goes by it.
  bool hostDraws() const { return hostDraws_; }
  // It cannot: what it was given is rendered anew.
  void drawWithoutHost();

 private:
  bool fetch(std::int32_t renderFactor);
  void renewBitmap();
  void releaseBitmap();
  std::int16_t render();
  void DrawToPreview();

  DialogWindows& windows_;
  EditedFilter* filter_ = nullptr;
  hostapi::FilterRecord* record_ = nullptr;
  std::int32_t nFactor = 1;
  std::int32_t nRequestedFactor = 1;
  std::int32_t nDraftLevel = 0;
  std::int32_t nAppliedFactor = -1;    // of the image that the host has filled in, -1 for none
  bool zoomAloneWantsRender_ = false;  // nothing else has asked since
  PreviewGeometry geometry_;
  // The view as it was chosen. Drafts come from it and lead back to it, so that rounding does not
  // add up; none when a draft was panned since.
  struct SettledView {
    std::int32_t factor;
    PreviewGeometry geometry;
  };
  std::optional<SettledView> settled_;
  std::optional<ThreadPool::KeepRunning> workers_;  // from the first render on: others follow
  std::uint8_t* bitmap_ = nullptr;                  // memory of the host
  std::int32_t nBitmapWidth = 0;
  std::int32_t nBitmapHeight = 0;
  bool bBitmapValid = false;
  bool hostDraws_ = false;
};

}  // namespace radiashafts
