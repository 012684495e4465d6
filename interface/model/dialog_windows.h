// The interface through which the model controls the two dialogs.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "interface/model/preview_geometry.h"

namespace radiashafts {

class DialogWindows {
 public:
  virtual ~DialogWindows() = default;

  virtual Extent frameSize() const = 0;  // of the preview's frame, in screen pixels
  virtual int dotsPerInch() const = 0;
  virtual void invalidateFrame() = 0;
  virtual void paintNow() = 0;  // paints the invalid part of the preview
  virtual void setPercentage(const std::string& text) = 0;
  virtual void setCaption(const std::string& text) = 0;  // of the preview
  virtual void enableHistory(bool undo, bool redo) = 0;

  virtual void captureMouse() = 0;  // in the preview
  virtual void releaseMouse() = 0;

  virtual void usePipetteCursor(bool pipette) = 0;
  // The colour at a point of the preview's client area; none when it cannot be read.
  virtual std::optional<std::array<std::uint8_t, 3>> screenColor(Point point) = 0;

  virtual void enableDialogs(bool enabled) = 0;
};

}  // namespace radiashafts
