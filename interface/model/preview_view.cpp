#include "interface/model/preview_view.h"

#include <algorithm>
#include <new>
#include <utility>

#include "diagnostics/debug_log.h"
#include "hostapi/constants.h"
#include "interface/model/live_preview.h"
#include "interface/model/preview_pixels.h"
#include "parameters/number_text.h"
#include "platform/tick.h"

namespace radiashafts {

void PreviewView::open(EditedFilter* filter, hostapi::FilterRecord* record) {
  filter_ = filter;
  record_ = record;
  nAppliedFactor = -1;
  nDraftLevel = 0;
  fits_ = false;
  geometry_ = {};
  position_ = "Preview";
  clipped_.clear();
  caption_.clear();
  fullQualityView_.reset();
  hostDraws_ = record->displayPixels != nullptr;
}

void PreviewView::close() {
  workers_.reset();
  nRenderStartTick = 0;
  isSplit_ = false;
  retireBitmap();
  freeBitmap(former_);
  anchor_.reset();
  filter_ = nullptr;
  record_ = nullptr;
}

void PreviewView::RequestRender() {
  bRenderPending = true;
  zoomOnlyPending_ = false;
  UpdateUndoButtons();
}

void PreviewView::UpdateUndoButtons() {
  if (isOpen()) {
    windows_.enableHistory(filter_->undoHistory.CanUndo(), filter_->undoHistory.CanRedo());
  }
}

// Clamped, because a host may return any rectangle.
Extent PreviewView::renderedSize() const {
  const hostapi::Rect& rect = record_->outRect;
  return {std::clamp(rect.right - rect.left, 0, hostapi::maximumSide),
          std::clamp(rect.bottom - rect.top, 0, hostapi::maximumSide)};
}

const PreviewGeometry& PreviewView::geometry() {
  geometry_.frame = windows_.frameSize();
  geometry_.dotsPerInch = windows_.dotsPerInch();
  return geometry_;
}

void PreviewView::showPosition(const std::string& position) {
  position_ = position;
  showCaption();
}

// Rounded to a tenth of a percent, but any clipped pixel counts.
void PreviewView::showClipped(const DrawnPixels& drawn) {
  const double share = static_cast<double>(drawn.clipped) / std::max(drawn.visible, 1);
  const int tenths = std::max(wholePixels(share * 1000.0 + 0.5), drawn.clipped > 0 ? 1 : 0);
  clipped_ = "   clipped: " + numberText(tenths * 0.1) + '%';
  showCaption();
}

void PreviewView::showCaption() {
  const std::string caption = position_ + clipped_;
  if (caption == caption_) return;
  caption_ = caption;
  windows_.setCaption(caption);
}

void PreviewView::panTo(Point pan) {
  geometry_.pan = pan;
  fullQualityView_.reset();
  if (nDraftLevel == 0) fullQualityView_ = {nFactor, geometry_};
  windows_.invalidateFrame();
}

void PreviewView::limitPan() {
  geometry_.frame = windows_.frameSize();
  geometry_.limitPan();
}

void PreviewView::FitScaleToFrame() {
  nRequestedFactor = fittingFactor(imageSize(), windows_.frameSize());
  fits_ = true;
  AssignScaleFactor(nRequestedFactor);
}

void PreviewView::ZoomToFit() {
  ZoomTo(fittingFactor(imageSize(), windows_.frameSize()));
  fits_ = true;
}

bool PreviewView::isFitted() const {
  return fits_ && nRequestedFactor == fittingFactor(imageSize(), windows_.frameSize());
}

void PreviewView::ZoomBy(std::int32_t steps) {
  ZoomTo(nFactor + steps);
}

void PreviewView::ZoomTo(std::int32_t factor, std::optional<Point> anchor) {
  nRequestedFactor = factor;
  fits_ = false;
  anchor_.reset();
  if (nRequestedFactor == nFactor) return;
  anchor_ = anchor;
  zoomOnlyPending_ = !bRenderPending || zoomOnlyPending_;
  bRenderPending = true;
}

void PreviewView::AssignScaleFactor(std::int32_t factor) {
  trace("pfPreviewWin32::AssignScaleFactor( nFactor(", factor, ") )");
  const LogIndent indent;
  nFactor = factor;
  const ViewScale scale{nFactor, nDraftLevel};
  windows_.setPercentage(scale.percentage());

  geometry_.frame = windows_.frameSize();
  const bool sameView = fullQualityView_ && fullQualityView_->factor == nFactor;
  const PreviewGeometry before = sameView ? fullQualityView_->geometry : geometry_;
  const Point centre = before.centre(before.viewScale);
  geometry_.viewScale = scale.viewScale();
  const bool sameImage = scale.renderFactor() == nAppliedFactor;
  if (!sameImage && !fetch(scale.renderFactor())) return;
  geometry_.panTo(before.pixelOf(geometry_.image, centre));
  keepAnchor(before);
  if (nDraftLevel == 0) {
    if (sameView) geometry_.pan = before.pan;
    fullQualityView_ = {nFactor, geometry_};
  } else if (!sameView) {
    fullQualityView_.reset();  // the scale was changed in a draft, so the last view is of no use
  }
  windows_.invalidateFrame();
  windows_.paintNow();
  if (!sameImage) {
    renewBitmap();
  } else if (zoomOnlyPending_) {
    bRenderPending = false;
  }
  trace("pfPreviewWin32::AssignScaleFactor( return(", 0, ") )");
}

// Moves the picture so that what was at the anchor is there again.
void PreviewView::keepAnchor(const PreviewGeometry& before) {
  if (!anchor_) return;
  const Point anchor = *std::exchange(anchor_, std::nullopt);
  const auto was = before.clientToImage(anchor, {});
  const auto is = geometry_.clientToImage(anchor, {});
  geometry_.pan.x += wholePixels((was[0] - is[0]) * geometry_.image.width);
  geometry_.pan.y -= wholePixels((was[1] - is[1]) * geometry_.image.height);
}

// When the host fails, the record describes an image that is not there; nothing is rendered until a
// later attempt succeeds.
bool PreviewView::fetch(std::int32_t renderFactor) {
  retireBitmap();
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
  bitmap_.image = geometry_.image;
  bitmap_.size = {bitmapWidthFor(bitmap_.image.width), bitmap_.image.height};
  const std::uint32_t size = static_cast<std::uint32_t>(bitmap_.size.height) *
                             static_cast<std::uint32_t>(bitmap_.size.width) * 3;
  bitmap_.pixels = allocatePixels(size);
  if (bitmap_.pixels == nullptr && (former_.pixels != nullptr || untouched_.pixels != nullptr)) {
    freeBitmap(former_);
    dropUntouched();
    bitmap_.pixels = allocatePixels(size);
  }
  if (bitmap_.pixels == nullptr) {
    logLine(severityError, errorMarker, "Out of memory");
    return;
  }
  RequestRender();
}

// Null when there is no memory.
std::uint8_t* PreviewView::allocatePixels(std::uint32_t size) {
  try {
    return static_cast<std::uint8_t*>(filter_->Allocate(size));
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

// A picture stays on the screen until the next one is drawn.
void PreviewView::retireBitmap() {
  showsUntouched_ = false;
  if (!isSplit_) freeBitmap(untouched_);
  if (std::exchange(bBitmapValid, false)) {
    freeBitmap(former_);
    former_ = std::exchange(bitmap_, {});
  }
  freeBitmap(bitmap_);
}

void PreviewView::freeBitmap(PreviewBitmap& bitmap) {
  if (bitmap.pixels != nullptr) filter_->Free(bitmap.pixels);
  bitmap = {};
}

const PreviewBitmap* PreviewView::shownBitmap() const {
  if (showsUntouched_) return &untouched_;
  if (bBitmapValid) return &bitmap_;
  return former_.pixels != nullptr ? &former_ : nullptr;
}

const PreviewBitmap* PreviewView::splitBitmap() const {
  return isSplit_ && !showsUntouched_ && untouched_.pixels != nullptr ? &untouched_ : nullptr;
}

void PreviewView::disableHostDrawing() {
  hostDraws_ = false;
  dropUntouched();
  freeBitmap(former_);
  if (std::exchange(bBitmapValid, false)) RequestRender();
}

void PreviewView::showUntouched(bool show) {
  if (show == showsUntouched_ || !bBitmapValid) return;
  if (show && untouched_.pixels == nullptr) drawUntouched();
  showsUntouched_ = show && untouched_.pixels != nullptr;
  if (!showsUntouched_ && !isSplit_) freeBitmap(untouched_);
  windows_.invalidateFrame();
}

void PreviewView::showSplit(bool show) {
  isSplit_ = show;
  if (show && bBitmapValid && untouched_.pixels == nullptr) drawUntouched();
  if (!show && !showsUntouched_) freeBitmap(untouched_);
  windows_.invalidateFrame();
}

void PreviewView::moveSplit(int column) {
  geometry_.frame = windows_.frameSize();
  geometry_.moveSplit(column);
  windows_.invalidateFrame();
}

// Without memory the former one stays. The host's reduced input stays where it is until the next
// fetch.
void PreviewView::drawUntouched() {
  hostapi::FilterRecord input = *record_;
  input.outData = input.inData;
  input.outRowBytes = input.inRowBytes;
  PreviewBitmap bitmap{nullptr, bitmap_.size, bitmap_.image, ++drawings_};
  bitmap.pixels = allocatePixels(static_cast<std::uint32_t>(bitmap.size.height) *
                                 static_cast<std::uint32_t>(bitmap.size.width) * 3);
  if (bitmap.pixels == nullptr) return;
  if (drawToPreview(input, bitmapOrder(), bitmap.size.width, bitmap.pixels))
    std::swap(bitmap, untouched_);
  freeBitmap(bitmap);
}

void PreviewView::dropUntouched() {
  showsUntouched_ = false;
  freeBitmap(untouched_);
}

BitmapOrder PreviewView::bitmapOrder() const {
  return hostDraws() ? BitmapOrder::forHost : BitmapOrder::forSystem;
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
    // Not 0, which would mean a final render.
    nRenderStartTick = std::max<std::uint32_t>(platform::tickCount(), 1);
    bRenderPending = false;
    zoomOnlyPending_ = false;
    filter_->previewLevel = nDraftLevel;
    if (nAppliedFactor < 0) {
      AssignScaleFactor(nFactor);  // retries the fetch
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
      bRenderPending = true;  // also when AssignScaleFactor fetched no new image
    }
  }
}

std::int16_t PreviewView::render() {
  try {
    return filter_->SelectRenderTemplate(record_);
  } catch (const std::bad_alloc&) {
    return hostapi::memoryFullError;  // keeps the dialogs open
  }
}

void PreviewView::DrawToPreview() {
  if (bitmap_.pixels == nullptr) return;
  const auto drawn = drawToPreview(*record_, bitmapOrder(), bitmap_.size.width, bitmap_.pixels);
  if (!drawn) return;
  bitmap_.drawing = ++drawings_;
  bBitmapValid = true;
  showClipped(*drawn);
  freeBitmap(former_);
  // It is kept through drafts, which it does not need.
  const bool isOfThisView = nDraftLevel > 0 || untouched_.image == bitmap_.image;
  if (isSplit_ && (untouched_.pixels == nullptr || !isOfThisView)) drawUntouched();
}

}  // namespace radiashafts
