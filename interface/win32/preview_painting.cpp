#include "interface/win32/preview_painting.h"

#include "diagnostics/debug_log.h"
#include "hostapi/constants.h"

namespace radiashafts {
namespace {

constexpr COLORREF marginColor = 0xBBBBBB;

RECT rectOf(const Box& box) {
  return {box.left, box.top, box.right, box.bottom};
}

BITMAPINFO describe(const PreviewView& view) {
  const Extent size = view.bitmapSize();
  const Extent image = view.renderedSize();
  BITMAPINFO info{};
  info.bmiHeader.biSize = sizeof info.bmiHeader;
  info.bmiHeader.biWidth = size.width;
  info.bmiHeader.biHeight = size.height;  // rows from the bottom
  info.bmiHeader.biPlanes = 1;
  info.bmiHeader.biBitCount = 24;
  info.bmiHeader.biCompression = BI_RGB;
  info.bmiHeader.biSizeImage =
      static_cast<DWORD>(image.width) * static_cast<DWORD>(image.height) * 3;
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

void drawHandle(HDC context, Point centre) {
  for (const HandleSquare& square : handleSquares) {
    const HPEN pen = CreatePen(PS_SOLID, 0, square.color);
    const HGDIOBJ previous = SelectObject(context, pen);
    drawSquare(context, centre, square.halfSize);
    SelectObject(context, previous);
    DeleteObject(pen);
  }
  const HGDIOBJ previous = SelectObject(context, GetStockObject(BLACK_PEN));
  constexpr int half = handleOuterHalfSize;
  drawSquare(context, centre, half);
  MoveToEx(context, centre.x - half, centre.y - half, nullptr);
  LineTo(context, centre.x + half, centre.y + half);
  MoveToEx(context, centre.x + half, centre.y - half, nullptr);
  LineTo(context, centre.x - half, centre.y + half);
  SelectObject(context, previous);
}

}  // namespace

BackBuffer::BackBuffer(HDC screen, Extent size)
    : size_(size),
      context_(CreateCompatibleDC(screen)),
      bitmap_(CreateCompatibleBitmap(screen, size.width, size.height)),
      previous_(SelectObject(context_, bitmap_)) {}

BackBuffer::~BackBuffer() {
  SelectObject(context_, previous_);
  DeleteObject(bitmap_);
  DeleteDC(context_);
}

void BackBuffer::show(HDC screen) const {
  BitBlt(screen, 0, 0, size_.width, size_.height, context_, 0, 0, SRCCOPY);
}

const BackBuffer& PreviewPainting::bufferFor(HDC screen, Extent size) {
  const bool fits = buffer_ && buffer_->size().width == size.width &&
                    buffer_->size().height == size.height && buffer_->isUsable();
  if (!fits) buffer_.emplace(screen, size);
  return *buffer_;
}

void PreviewPainting::release() {
  forgetBitmap();
  buffer_.reset();
}

void PreviewPainting::paint(HDC screen, PreviewView& view,
                            const std::optional<std::array<double, 2>>& light) {
  view.limitPan();
  const PreviewGeometry& geometry = view.geometry();
  const BackBuffer& buffer = bufferFor(screen, geometry.frame);
  const HDC context = buffer.isUsable() ? buffer.context() : screen;

  const Box to = geometry.destination();
  const Box from = geometry.source();
  SetBrushOrgEx(context, to.left - geometry.pan.x, to.top - geometry.pan.y, nullptr);
  const BITMAPINFO info = describe(view);
  const void* bits = view.hasBitmap() ? bitsOf(view, info) : nullptr;
  if (bits == nullptr) {
    const RECT rect = rectOf(to);
    FillRect(context, &rect, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
  } else {
    SetStretchBltMode(context, COLORONCOLOR);
    const int lines =
        StretchDIBits(context, to.left, to.top, to.width(), to.height(), from.left, from.top,
                      from.width(), from.height(), bits, &info, DIB_RGB_COLORS, SRCCOPY);
    if (lines == -1) {
      logLine(severityWarning, warningMarker, "StretchDIBBits failed. GetLastError(",
              GetLastError(), ")");
    }
  }

  const HBRUSH brush = CreateSolidBrush(marginColor);
  for (const Box& margin : geometry.margins()) {
    const RECT rect = rectOf(margin);
    FillRect(context, &rect, brush);
  }
  DeleteObject(brush);
  if (light) drawHandle(context, geometry.handle((*light)[0], (*light)[1]));
  if (buffer.isUsable()) buffer.show(screen);
}

const void* PreviewPainting::bitsOf(const PreviewView& view, const BITMAPINFO& info) {
  return view.hostDraws() ? drawnByHost(view, info) : view.bitmap();
}

const void* PreviewPainting::drawnByHost(const PreviewView& view, const BITMAPINFO& info) {
  if (hostBits_ != nullptr) return hostBits_;
  const HDC screen = GetDC(nullptr);
  hostContext_ = CreateCompatibleDC(screen);
  ReleaseDC(nullptr, screen);
  hostBitmap_ = CreateDIBSection(hostContext_, &info, DIB_RGB_COLORS, &hostBits_, nullptr, 0);
  if (hostBitmap_ == nullptr) {
    forgetBitmap();
    return nullptr;
  }
  hostPrevious_ = SelectObject(hostContext_, hostBitmap_);

  const Extent size = view.bitmapSize();
  hostapi::PSPixelMap map{};
  map.version = 1;
  map.bounds = {0, 0, size.height, size.width};
  map.imageMode = hostapi::modeRGB;
  map.rowBytes = size.width * 3;
  map.colBytes = 3;
  map.planeBytes = 1;
  map.baseAddr = const_cast<std::uint8_t*>(view.bitmap());
  const hostapi::VRect whole = map.bounds;
  view.record().displayPixels(&map, &whole, 0, 0, hostContext_);
  GdiFlush();
  return hostBits_;
}

void PreviewPainting::forgetBitmap() {
  if (hostBitmap_ != nullptr) {
    SelectObject(hostContext_, hostPrevious_);
    DeleteObject(hostBitmap_);
  }
  if (hostContext_ != nullptr) DeleteDC(hostContext_);
  hostContext_ = nullptr;
  hostBitmap_ = nullptr;
  hostBits_ = nullptr;
}

}  // namespace radiashafts
