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

  // Paints the picture, the margins in that colour, the split line where there is one and, unless
  // light is empty, the handle at that normalised position.
  void paint(HDC screen, PreviewView& view, const std::optional<std::array<double, 2>>& light,
             COLORREF margin);
  // Frees the surfaces.
  void release();

 private:
  // A bitmap as the host has drawn it.
  struct HostDrawing {
    std::optional<Surface> surface;
    unsigned drawing = 0;  // the bitmap's number
  };
  // Columns of the frame.
  struct Columns {
    int left;
    int right;  // exclusive
  };
  const Surface& bufferFor(Extent frame);
  bool paintBitmap(HDC context, const Surface& buffer, PreviewView& view,
                   const PreviewBitmap& bitmap, HostDrawing& drawing, Columns columns);
  static const void* drawnByHost(PreviewView& view, const PreviewBitmap& bitmap,
                                 const BITMAPINFO& info, HostDrawing& drawing);

  // The surfaces are reused while their size stays the same.
  std::optional<Surface> buffer_;  // of the frame; double buffering avoids flicker
  HostDrawing shown_;
  HostDrawing untouched_;  // left of the split line
};

}  // namespace radiashafts
