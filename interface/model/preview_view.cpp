#include "interface/model/preview_view.h"

#include <algorithm>
#include <new>

#include "diagnostics/debug_log.h"
#include "hostapi/constants.h"
#include "interface/model/live_preview.h"
#include "interface/model/preview_pixels.h"
#include "platform/tick.h"

namespace radiashafts {

void PreviewView::open(EditedFilter* filter, hostapi::FilterRecord* record) {
  filter_ = filter;
  record_ = record;
  nAppliedFactor = -1;
  nDraftLevel = 0;
  geometry_ = {};
  settled_.reset();
  hostDraws_ = record->displayPixels != nullptr;
}

void PreviewView::close() {
  workers_.reset();
  nRenderStartTick = 0;
  releaseBitmap();
  filter_ = nullptr;
  record_ = nullptr;
}

void PreviewView::RequestRender() {
  bRenderPending = true;
  zoomAloneWantsRender_ = false;
  UpdateUndoButtons();
}

void PreviewView::UpdateUndoButtons() {
  if (isOpen()) {
    windows_.enableHistory(filter_->undoHistory.CanUndo(), filter_->undoHistory.CanRedo());
  }
}

// A host may answer with any rectangle.
Extent PreviewView::renderedSize() const {
  const hostapi::Rect& rect = record_->outRect;
  return {std::clamp(rect.right - rect.left, 0, hostapi::maximumSide),
          std::clamp(rect.bottom - rect.top, 0, hostapi::maximumSide)};
}

const PreviewGeometry& PreviewView::geometry() {
  geometry_.frame = windows_.frameSize();
  return geometry_;
}

void PreviewView::panTo(Point pan) {
  geometry_.pan = pan;
  settled_.reset();
  if (nDraftLevel == 0) settled_ = {nFactor, geometry_};
  windows_.invalidateFrame();
}

void PreviewView::limitPan() {
  geometry_.frame = windows_.frameSize();
  geometry_.limitPan();
}

void PreviewView::FitScaleToFrame() {
  nRequestedFactor = fittingFactor(imageSize(), windows_.frameSize());
  AssignScaleFactor(nRequestedFactor);
}

void PreviewView::ZoomBy(std::int32_t steps) {
  nRequestedFactor = nFactor + steps;
  if (nRequestedFactor == nFactor) return;
  zoomAloneWantsRender_ = !bRenderPending || zoomAloneWantsRender_;
  bRenderPending = true;
}

void PreviewView::AssignScaleFactor(std::int32_t factor) {
  trace("pfPreviewWin32::AssignScaleFactor( nFactor(", factor, ") )");
  const LogIndent indent;
  nFactor = factor;
  const ViewScale scale{nFactor, nDraftLevel};
  windows_.setPercentage(scale.percentage());

  geometry_.frame = windows_.frameSize();
  const bool sameView = settled_ && settled_->factor == nFactor;
  const PreviewGeometry before = sameView ? settled_->geometry : geometry_;
  const Point centre = before.centre(before.viewScale);
  geometry_.viewScale = scale.viewScale();
  const bool sameImage = scale.renderFactor() == nAppliedFactor;
  if (!sameImage && !fetch(scale.renderFactor())) return;
  const auto scaled = [](int position, int now, int then) {
    return then > 0 ? wholePixels(static_cast<double>(position) * now / then) : now / 2;
  };
  geometry_.panTo({scaled(centre.x, geometry_.image.width, before.image.width),
                   scaled(centre.y, geometry_.image.height, before.image.height)});
  if (nDraftLevel == 0) {
    if (sameView) geometry_.pan = before.pan;
    settled_ = {nFactor, geometry_};
  } else if (!sameView) {
    settled_.reset();  // a view chosen over a draft: an older one of this factor is another place
  }
  windows_.invalidateFrame();
  windows_.paintNow();
  if (!sameImage) {
    renewBitmap();
  } else if (zoomAloneWantsRender_) {
    bRenderPending = false;
  }
  trace("pfPreviewWin32::AssignScaleFactor( return(", 0, ") )");
}

// Where the host fails the record tells of an image that is not there, and nothing is rendered
// until it is.
bool PreviewView::fetch(std::int32_t renderFactor) {
  releaseBitmap();
  nAppliedFactor = -1;
  if (filter_->SetupFilterRecord(record_, static_cast<std::uint32_t>(renderFactor)) != 0) {
    windows_.invalidateFrame();
    return false;
  }
  nAppliedFactor = renderFactor;
  geometry_.image = renderedSize();
  return true;
}

void PreviewView::renewBitmap() {
  nBitmapHeight = geometry_.image.height;
  nBitmapWidth = bitmapWidthFor(geometry_.image.width);
  const auto size =
      static_cast<std::uint32_t>(nBitmapHeight) * static_cast<std::uint32_t>(nBitmapWidth) * 3;
  try {
    bitmap_ = static_cast<std::uint8_t*>(filter_->Allocate(size));
  } catch (const std::bad_alloc&) {
    bitmap_ = nullptr;
  }
  if (bitmap_ == nullptr) {
    logLine(severityError, errorMarker, "Out of memory");
    return;
  }
  RequestRender();
}

void PreviewView::releaseBitmap() {
  bBitmapValid = false;
  if (bitmap_ == nullptr) return;
  windows_.bitmapChanged();
  filter_->Free(bitmap_);
  bitmap_ = nullptr;
}

void PreviewView::drawWithoutHost() {
  hostDraws_ = false;
  if (!bBitmapValid) return;
  bBitmapValid = false;
  RequestRender();
}

bool PreviewView::needsRender() const {
  return bRenderPending || nRequestedFactor != nFactor;
}

void PreviewView::RenderUntilFinal() {
  while (nDraftLevel > 0 || needsRender()) {
    if (nRequestedFactor != nFactor) {
      AssignScaleFactor(nRequestedFactor);
      continue;
    }
    // 0 would stand for a final render.
    nRenderStartTick = std::max<std::uint32_t>(platform::tickCount(), 1);
    bRenderPending = false;
    zoomAloneWantsRender_ = false;
    filter_->previewLevel = nDraftLevel;
    if (nAppliedFactor < 0) {
      AssignScaleFactor(nFactor);  // the host may be able to now
      if (nAppliedFactor < 0) break;
      continue;
    }
    const std::int16_t status = render();
    if (!workers_) workers_.emplace(ThreadPool::Instance());
    if (status == hostapi::userCanceledError) {
      ++nDraftLevel;
      AssignScaleFactor(nRequestedFactor);
      continue;
    }
    if (status != 0) break;
    DrawToPreview();
    windows_.invalidateFrame();
    windows_.paintNow();
    if (!bRenderPending && nDraftLevel > 0) {
      nDraftLevel = 0;
      AssignScaleFactor(nRequestedFactor);
      bRenderPending = true;  // even where a zoom step has kept the draft's scale
    }
  }
}

std::int16_t PreviewView::render() {
  try {
    return filter_->SelectRenderTemplate(record_);
  } catch (const std::bad_alloc&) {
    return hostapi::memoryFullError;  // the windows stay open
  }
}

void PreviewView::DrawToPreview() {
  if (bitmap_ == nullptr) return;
  const BitmapOrder order = hostDraws() ? BitmapOrder::forHost : BitmapOrder::forSystem;
  if (drawToPreview(*record_, order, nBitmapWidth, bitmap_)) bBitmapValid = true;
  windows_.bitmapChanged();
}

}  // namespace radiashafts
