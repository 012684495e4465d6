#include "interface/win32/pipette_cursor.h"

#include "interface/win32/dialog_ids.h"
#include "interface/win32/visual_style.h"

namespace radiashafts {

void PipetteCursor::load() {
  cursor_ = static_cast<HCURSOR>(LoadImageA(moduleInstance(), MAKEINTRESOURCEA(ID_PIPETTE_CURSOR),
                                            IMAGE_CURSOR, 0, 0, LR_DEFAULTSIZE));
}

void PipetteCursor::release() {
  if (cursor_ != nullptr) DestroyCursor(cursor_);
  cursor_ = nullptr;
}

void PipetteCursor::use(bool pipette) {
  if (pipette == used_) return;
  used_ = pipette;
  SetCursor(pipette && cursor_ != nullptr ? cursor_ : LoadCursorA(nullptr, IDC_ARROW));
}

bool PipetteCursor::set() const {
  if (!used_ || cursor_ == nullptr) return false;
  SetCursor(cursor_);
  return true;
}

}  // namespace radiashafts
