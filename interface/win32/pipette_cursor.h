// The pipette cursor, shown while the user picks a colour from the picture.
#pragma once

#include "interface/win32/dialog_ids.h"
#include "interface/win32/module_cursor.h"

namespace radiashafts {

class PipetteCursor {
 public:
  void load() { cursor_.load(); }
  void release() { cursor_.release(); }
  void use(bool pipette);
  // For WM_SETCURSOR: sets the pipette cursor; false when it is not in use.
  bool set() const;

 private:
  ModuleCursor cursor_{ID_PIPETTE_CURSOR};
  bool used_ = false;
};

}  // namespace radiashafts
