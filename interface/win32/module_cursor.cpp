#include "interface/win32/module_cursor.h"

#include "interface/win32/visual_style.h"

namespace radiashafts {

void ModuleCursor::load() {
  cursor_ = static_cast<HCURSOR>(LoadImageA(moduleInstance(), MAKEINTRESOURCEA(resource_),
                                            IMAGE_CURSOR, 0, 0, LR_DEFAULTSIZE));
}

void ModuleCursor::release() {
  if (cursor_ == nullptr) return;
  if (GetCursor() == cursor_) SetCursor(LoadCursorA(nullptr, IDC_ARROW));
  DestroyCursor(cursor_);
  cursor_ = nullptr;
}

}  // namespace radiashafts
