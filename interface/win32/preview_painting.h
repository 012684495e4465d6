// Paints the preview's frame.
#pragma once

#include <windows.h>

#include <optional>

#include "interface/model/preview_view.h"

namespace radiashafts {

// Memory to draw into and to read from. A reader or writer of its bits flushes first.
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

// Has the host draw a sample and tells whether it draws what it is given, in the log as well: it
// may draw by its own document's format.
bool hostDrawsAsTold(const hostapi::FilterRecord& record);

class PreviewPainting {
 public:
  PreviewPainting() = default;
  ~PreviewPainting() { release(); }
  PreviewPainting(const PreviewPainting&) = delete;
  PreviewPainting& operator=(const PreviewPainting&) = delete;

  // The picture, the margins around it and, where there is one, the light's handle at its
  // normalised position.
  void paint(HDC screen, PreviewView& view, const std::optional<std::array<double, 2>>& light);
  // What the host has drawn of the view's bitmap is out of date.
  void forgetBitmap() { hostHasDrawn_ = false; }
  // Gives everything back to the system.
  void release();

 private:
  const Surface& bufferFor(Extent frame);
  const void* bitsOf(PreviewView& view, const BITMAPINFO& info);
  const void* drawnByHost(PreviewView& view, const BITMAPINFO& info);

  // Both stay from one painting to the next of their size.
  std::optional<Surface> buffer_;  // of the frame, so that nothing flickers on the screen
  std::optional<Surface> hostSurface_;
  bool hostHasDrawn_ = false;
};

}  // namespace radiashafts
