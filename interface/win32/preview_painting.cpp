#include "interface/win32/preview_painting.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "diagnostics/debug_log.h"
#include "hostapi/constants.h"
#include "interface/model/host_drawing.h"
#include "platform/host_call.h"

namespace radiashafts {
namespace {

RECT rectOf(const Box& box) {
  return {box.left, box.top, box.right, box.bottom};
}

bool isWithin(const Box& box, Extent size) {
  return box.left >= 0 && box.top >= 0 && box.right <= size.width && box.bottom <= size.height;
}

BITMAPINFO describe(int width, int height, WORD bits) {
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = width;
  info.bmiHeader.biHeight = height;  // positive: bottom row first; negative: top row first
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = bits;
  info.bmiHeader.biCompression = BI_RGB;
  return info;
}

BITMAPINFO describeBuffer(Extent frame) {
  return describe(frame.width, -frame.height, 32);
}

BITMAPINFO describeBitmap(const PreviewBitmap& bitmap) {
  BITMAPINFO info = describe(bitmap.size.width, bitmap.size.height, 24);
  info.bmiHeader.biSizeImage =
      static_cast<DWORD>(bitmap.image.width) * static_cast<DWORD>(bitmap.image.height) * 3;
  return info;
}

void drawSquare(HDC context, Point centre, int halfSize) {
  const int left = centre.x - halfSize;
  const int top = centre.y - halfSize;
  const int right = centre.x + halfSize;
  const int bottom = centre.y + halfSize;
  const POINT corners[] = {{left, top}, {right, top}, {right, bottom}, {left, bottom}, {left, top}};
  Polyline(context, corners, 5);
}

// At 96 dots per inch the thinnest pen, above it one with sharp corners.
HPEN handlePen(COLORREF color, int width) {
  if (width == 1) return CreatePen(PS_SOLID, 0, color);
  const LOGBRUSH brush{BS_SOLID, color, 0};
  return ExtCreatePen(PS_GEOMETRIC | PS_SOLID | PS_ENDCAP_SQUARE | PS_JOIN_MITER,
                      static_cast<DWORD>(width), &brush, 0, nullptr);
}

void drawHandle(HDC context, const PreviewGeometry& geometry, Point centre) {
  const int lineWidth = geometry.scaled(1);
  const auto select = [context, lineWidth](COLORREF color) {
    return SelectObject(context, handlePen(color, lineWidth));
  };
  const HGDIOBJ previous = select(handleSquares[0].color);
  for (const HandleSquare& square : handleSquares) {
    DeleteObject(select(square.color));
    drawSquare(context, centre, geometry.scaled(square.halfSize));
  }
  DeleteObject(select(RGB(0, 0, 0)));
  const int half = geometry.scaled(handleOuterHalfSize);
  drawSquare(context, centre, half);
  const int end = half - lineWidth + 1;  // thick diagonals do not reach out of the corners
  MoveToEx(context, centre.x - end, centre.y - end, nullptr);
  LineTo(context, centre.x + end, centre.y + end);
  MoveToEx(context, centre.x + end, centre.y - end, nullptr);
  LineTo(context, centre.x - end, centre.y + end);
  DeleteObject(SelectObject(context, previous));
}

// Black beside white, to be seen on every picture.
void drawSplitLine(HDC context, const PreviewGeometry& geometry) {
  const int column = geometry.splitColumn();
  const int width = geometry.scaled(1);
  const RECT black{column - width, 0, column, geometry.frame.height};
  const RECT white{column, 0, column + width, geometry.frame.height};
  FillRect(context, &black, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  FillRect(context, &white, static_cast<HBRUSH>(GetStockObject(WHITE_BRUSH)));
}

// Same result as StretchDIBits at scale 1, but several times faster, because some systems allocate
// a conversion buffer there. In from, as in the bitmap, y counts from the bottom.
void copyPixels(const Surface& buffer, const Box& to, const Box& from, const void* bits,
                int bitmapWidth) {
  GdiFlush();
  for (std::ptrdiff_t y = 0; y < to.height(); ++y) {
    const std::ptrdiff_t row = from.top + from.height() - 1 - y;
    const auto* pixel =
        static_cast<const std::uint8_t*>(bits) + (row * bitmapWidth + from.left) * 3;
    auto* out = static_cast<std::uint8_t*>(buffer.bits()) +
                ((to.top + y) * buffer.size().width + to.left) * 4;
    for (int x = 0; x < to.width(); ++x, pixel += 3, out += 4) std::memcpy(out, pixel, 3);
  }
}

// Lets the host draw pixels, which are red, green, blue with the top row first, to the surface.
hostapi::OSErr drawByHost(const hostapi::FilterRecord& record, const std::uint8_t* pixels,
                          const Surface& surface) {
  const Extent size = surface.size();
  hostapi::PSPixelMap map{};
  map.version = 1;
  map.bounds = {0, 0, size.height, size.width};
  map.imageMode = hostapi::modeRGB;
  map.rowBytes = size.width * 3;
  map.colBytes = 3;
  map.planeBytes = 1;
  map.baseAddr = const_cast<std::uint8_t*>(pixels);
  const hostapi::VRect whole = map.bounds;
  const hostapi::OSErr error =
      platform::callHost(record.displayPixels, &map, &whole, 0, 0, surface.context());
  GdiFlush();
  return error;
}

void copyToScreen(const Surface& buffer, HDC screen) {
  const Extent size = buffer.size();
  BitBlt(screen, 0, 0, size.width, size.height, buffer.context(), 0, 0, SRCCOPY);
}

}  // namespace

Surface::Surface(const BITMAPINFO& info)
    : size_{info.bmiHeader.biWidth, std::abs(info.bmiHeader.biHeight)},
      context_(CreateCompatibleDC(nullptr)),
      bitmap_(CreateDIBSection(context_, &info, DIB_RGB_COLORS, &bits_, nullptr, 0)),
      previous_(SelectObject(context_, bitmap_)) {}

Surface::~Surface() {
  SelectObject(context_, previous_);
  DeleteObject(bitmap_);
  DeleteDC(context_);
}

bool hostDrawsCorrectly(const hostapi::FilterRecord& record) {
  if (record.displayPixels == nullptr) return false;
  const Surface surface(describe(sampleWidth, sampleHeight, 24));
  if (!surface.isUsable()) return false;
  const std::vector<std::uint8_t> sample = drawingSample();
  const hostapi::OSErr error = drawByHost(record, sample.data(), surface);
  if (error == 0 && showsSample(static_cast<const std::uint8_t*>(surface.bits()))) return true;
  logLine(severityWarning, warningMarker,
          "displayPixels does not draw the pixels that it is given. Code(", error, ")");
  return false;
}

const Surface& PreviewPainting::bufferFor(Extent frame) {
  if (!buffer_ || buffer_->size() != frame || !buffer_->isUsable()) {
    buffer_.emplace(describeBuffer(frame));
  }
  return *buffer_;
}

void PreviewPainting::release() {
  shown_.surface.reset();
  untouched_.surface.reset();
  buffer_.reset();
}

void PreviewPainting::paint(HDC screen, PreviewView& view,
                            const std::optional<std::array<double, 2>>& light, COLORREF margin) {
  view.limitPan();
  const PreviewGeometry& geometry = view.geometry();
  const Surface& buffer = bufferFor(geometry.frame);
  const HDC context = buffer.isUsable() ? buffer.context() : screen;

  const Box to = geometry.destination();
  SetBrushOrgEx(context, to.left - geometry.pan.x, to.top - geometry.pan.y, nullptr);
  // A host that fails to draw one bitmap makes the view free both.
  const int split = geometry.splitColumn();
  const PreviewBitmap* const untouched = view.splitBitmap();
  const bool isSplit = untouched != nullptr &&
                       paintBitmap(context, buffer, view, *untouched, untouched_, {0, split});
  const PreviewBitmap* const shown = view.shownBitmap();
  const Columns columns{isSplit ? split : 0, geometry.frame.width};
  if (shown == nullptr || !paintBitmap(context, buffer, view, *shown, shown_, columns)) {
    const int left = std::clamp(columns.left, to.left, to.right);
    const RECT rect{left, to.top, to.right, to.bottom};
    FillRect(context, &rect, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  }

  const HBRUSH brush = CreateSolidBrush(margin);
  for (const Box& box : geometry.margins()) {
    const RECT rect = rectOf(box);
    FillRect(context, &rect, brush);
  }
  DeleteObject(brush);
  if (isSplit) drawSplitLine(context, geometry);
  if (light) drawHandle(context, geometry, geometry.handle((*light)[0], (*light)[1]));
  if (buffer.isUsable()) copyToScreen(buffer, screen);
}

// Returns false if the host does not draw.
bool PreviewPainting::paintBitmap(HDC context, const Surface& buffer, PreviewView& view,
                                  const PreviewBitmap& bitmap, HostDrawing& drawing,
                                  Columns columns) {
  const Extent size = bitmap.size;
  const BITMAPINFO info = describeBitmap(bitmap);
  const Box to = view.geometry().destination();
  const Box from = view.geometry().source(bitmap.image);
  const void* bits = view.hostDraws() ? drawnByHost(view, bitmap, info, drawing) : bitmap.pixels;
  if (bits == nullptr) return false;
  Box part = to;
  part.left = std::max(to.left, columns.left);
  part.right = std::min(to.right, columns.right);
  if (part.left >= part.right) return true;
  if (buffer.isUsable() && isWithin(from, size) && from.width() == to.width() &&
      from.height() == to.height()) {
    Box partFrom = from;
    partFrom.left += part.left - to.left;
    copyPixels(buffer, part, partFrom, bits, size.width);
    return true;
  }
  const int state = SaveDC(context);
  IntersectClipRect(context, part.left, part.top, part.right, part.bottom);
  SetStretchBltMode(context, COLORONCOLOR);
  const int lines =
      StretchDIBits(context, to.left, to.top, to.width(), to.height(), from.left, from.top,
                    from.width(), from.height(), bits, &info, DIB_RGB_COLORS, SRCCOPY);
  if (lines == -1) {
    logLine(severityWarning, warningMarker, "StretchDIBBits failed. GetLastError(", GetLastError(),
            ")");
  }
  RestoreDC(context, state);
  return true;
}

// Null if the host does not draw; the bitmap is freed then.
const void* PreviewPainting::drawnByHost(PreviewView& view, const PreviewBitmap& bitmap,
                                         const BITMAPINFO& info, HostDrawing& drawing) {
  std::optional<Surface>& surface = drawing.surface;
  if (surface && drawing.drawing == bitmap.drawing) return surface->bits();
  drawing.drawing = 0;
  if (!surface || surface->size() != bitmap.size) surface.emplace(info);
  if (!surface->isUsable()) return nullptr;

  if (const auto error = drawByHost(view.record(), bitmap.pixels, *surface); error != 0) {
    logLine(severityWarning, warningMarker, "displayPixels failed. Code(", error, ")");
    view.disableHostDrawing();
    return nullptr;
  }
  drawing.drawing = bitmap.drawing;
  return surface->bits();
}

}  // namespace radiashafts
