// Paints the preview's frame.
#pragma once

#include <windows.h>

#include <optional>

#include "interface/preview_view.h"

namespace radiashafts {

class PreviewPainting {
 public:
  PreviewPainting() = default;
  ~PreviewPainting() { forgetBitmap(); }
  PreviewPainting(const PreviewPainting&) = delete;
  PreviewPainting& operator=(const PreviewPainting&) = delete;

  // The picture, the margins around it and, where there is one, the light's handle at its
  // normalised position.
  void paint(HDC screen, PreviewView& view, const std::optional<std::array<double, 2>>& light);
  // What the host has drawn of the view's bitmap is out of date.
  void forgetBitmap();

 private:
  const void* bitsOf(const PreviewView& view, const BITMAPINFO& info);
  const void* drawnByHost(const PreviewView& view, const BITMAPINFO& info);

  HDC hostContext_ = nullptr;
  HBITMAP hostBitmap_ = nullptr;
  HGDIOBJ hostPrevious_ = nullptr;
  void* hostBits_ = nullptr;
};

}  // namespace radiashafts
