// The interface through which widgets access the controls of the parameter dialog, by control id.
#pragma once

#include <string>
#include <vector>

#include "interface/model/preview_geometry.h"

namespace radiashafts {

class ControlPanel {
 public:
  virtual ~ControlPanel() = default;

  virtual Extent imageSize() const = 0;  // of the host's whole image, in pixels

  virtual bool hasFocus(int id) const = 0;
  virtual void enable(int id, bool enabled) = 0;
  virtual void show(int id, bool visible) = 0;
  virtual void invalidate(int id) = 0;  // schedules a repaint without erasing

  virtual std::string text(int id) const = 0;  // at most 50 characters
  virtual void setText(int id, const std::string& text) = 0;

  virtual void setSliderRange(int id, int minimum, int maximum, int page) = 0;
  virtual int sliderPosition(int id) const = 0;
  virtual void setSliderPosition(int id, int position, bool redraw) = 0;

  virtual bool isIndeterminate(int id) const = 0;
  virtual bool isChecked(int id) const = 0;
  virtual void setChecked(int id, bool checked) = 0;

  virtual int selectedEntry(int id) const = 0;  // counted from 0, -1 for none
  // Shows the entries in order and selects one, counted from 0.
  virtual void setEntries(int id, const std::vector<std::string>& entries, int selected) = 0;
};

}  // namespace radiashafts
