// The dialogs' own colours, which give way to the system's where the user has set high contrast.
#pragma once

#include <windows.h>

namespace radiashafts {

class SystemColors {
 public:
  // Asks the system; called at opening and when its settings or colours have changed.
  void update();

  // For WM_CTLCOLOREDIT and WM_CTLCOLORLISTBOX: sets red on white and returns the brush; 0 leaves
  // the control as the system colours it.
  INT_PTR colorEdit(HDC context) const;
  COLORREF margin() const;  // of the preview
  HBRUSH frame() const;     // of swatches; not to be deleted

 private:
  bool highContrast_ = false;
};

}  // namespace radiashafts
