// The font of a dialog's controls: the system's own for dialogs, since the template's is a coarse
// bitmap font where the screen is scaled.
#pragma once

#include <windows.h>

namespace radiashafts {

class DialogFont {
 public:
  DialogFont() = default;
  ~DialogFont() { release(); }
  DialogFont(const DialogFont&) = delete;
  DialogFont& operator=(const DialogFont&) = delete;

  // At a size at which all texts fit into the layout, which was made for the template's font. Where
  // there is none, and where the system shows both as the same face, the template's font stays.
  void apply(HWND dialog);
  // After the controls were made larger or smaller by to / from.
  void scale(HWND dialog, int from, int to);
  bool isApplied() const { return font_ != nullptr; }
  // Called when the dialog is gone.
  void release();

 private:
  void use(HWND dialog, HFONT font);

  HFONT font_ = nullptr;
};

}  // namespace radiashafts
