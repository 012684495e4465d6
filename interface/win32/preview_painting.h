// Paints the preview's frame.
#pragma once

#include <windows.h>

#include <optional>

#include "interface/preview_view.h"

namespace radiashafts {

// A drawing surface of the frame's size, so that nothing flickers on the screen.
class BackBuffer {
 public:
  BackBuffer(HDC screen, Extent size);
  ~BackBuffer();
  BackBuffer(const BackBuffer&) = delete;
  BackBuffer& operator=(const BackBuffer&) = delete;

  bool isUsable() const { return context_ != nullptr && bitmap_ != nullptr; }
  Extent size() const { return size_; }
  HDC context() const { return context_; }
  void show(HDC screen) const;

 private:
  Extent size_;
  HDC context_;
  HBITMAP bitmap_;
  HGDIOBJ previous_;
};

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
  void forgetBitmap();
  // Gives everything back to the system.
  void release();

 private:
  const BackBuffer& bufferFor(HDC screen, Extent size);
  const void* bitsOf(const PreviewView& view, const BITMAPINFO& info);
  const void* drawnByHost(const PreviewView& view, const BITMAPINFO& info);

  std::optional<BackBuffer> buffer_;  // stays from one painting to the next of its size
  HDC hostContext_ = nullptr;
  HBITMAP hostBitmap_ = nullptr;
  HGDIOBJ hostPrevious_ = nullptr;
  void* hostBits_ = nullptr;
};

}  // namespace radiashafts
