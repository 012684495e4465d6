#include "interface/win32/pipette_cursor.h"

namespace radiashafts {

void PipetteCursor::use(bool pipette) {
  if (pipette == used_) return;
  used_ = pipette;
  SetCursor(pipette && cursor_.get() != nullptr ? cursor_.get() : LoadCursorA(nullptr, IDC_ARROW));
}

bool PipetteCursor::set() const {
  if (!used_ || cursor_.get() == nullptr) return false;
  SetCursor(cursor_.get());
  return true;
}

}  // namespace radiashafts
