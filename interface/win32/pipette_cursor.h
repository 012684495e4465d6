// The pipette cursor, shown while the user picks a colour from the picture.
#pragma once

#include <windows.h>

namespace radiashafts {

class PipetteCursor {
 public:
  PipetteCursor() = default;
  ~PipetteCursor() { release(); }
  PipetteCursor(const PipetteCursor&) = delete;
  PipetteCursor& operator=(const PipetteCursor&) = delete;

  void load();
  void release();
  void use(bool pipette);
  // For WM_SETCURSOR: sets the pipette cursor; false when it is not in use.
  bool set() const;

 private:
  HCURSOR cursor_ = nullptr;
  bool used_ = false;
};

}  // namespace radiashafts
