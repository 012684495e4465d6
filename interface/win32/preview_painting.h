// Paints the contents of the preview's frame.
#pragma once

#include <windows.h>

#include <optional>

#include "interface/model/preview_view.h"

namespace radiashafts {

// RAII: a memory bitmap with a device context. Callers call GdiFlush before accessing bits
// directly.
class Surface {
 public:
  explicit Surface(const BITMAPINFO& info);
  ~Surface();
  Surface(const Surface&) = delete;
  Surface& operator=(const Surface&) = delete;

  bool isUsable() const { return context_ != nullptr && bitmap_ != nullptr; }
  Extent size() const { return size_; }
  HDC context() const { return context_; }
  void* bits() const { return bits_; }

 private:
  Extent size_;
  void* bits_ = nullptr;
  HDC context_;
  HBITMAP bitmap_;
  HGDIOBJ previous_;
};

// Lets the host draw a sample and returns whether the result is correct; logs a warning when it is
// wrong. Some hosts interpret the pixels in the format of their own document.
bool hostDrawsCorrectly(const hostapi::FilterRecord& record);

class PreviewPainting {
 public:
  PreviewPainting() = default;
  ~PreviewPainting() { release(); }
  PreviewPainting(const PreviewPainting&) = delete;
  PreviewPainting& operator=(const PreviewPainting&) = delete;

  // Paints the picture, the margins in that colour and, unless light is empty, the handle at that
  // normalised position.
  void paint(HDC screen, PreviewView& view, const std::optional<std::array<double, 2>>& light,
             COLORREF margin);
  // Called when the view shows another bitmap: the host has to draw it again.
  void invalidateBitmap() { hostSurfaceValid_ = false; }
  // Frees the surfaces.
  void release();

 private:
  const Surface& bufferFor(Extent frame);
  bool paintBitmap(HDC context, const Surface& buffer, PreviewView& view,
                   const PreviewBitmap& bitmap);
  const void* drawnByHost(PreviewView& view, const PreviewBitmap& bitmap, const BITMAPINFO& info);

  // Both are reused while the size stays the same.
  std::optional<Surface> buffer_;  // of the frame; double buffering avoids flicker
  std::optional<Surface> hostSurface_;
  bool hostSurfaceValid_ = false;
};

}  // namespace radiashafts
