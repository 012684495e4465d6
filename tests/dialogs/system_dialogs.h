// What stands over the parameter dialog for a while: prompts and the chooser of files.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tests/dialogs/dialog_driver.h"

namespace radiashafts::test {

// The visible texts in a dialog's own controls of a class, in their order.
std::vector<std::string> textsIn(HWND dialog, const char* windowClass);

// The dialog of that caption beside the two, once the window manager has done with it. A button of
// the parameter dialog is pressed for it: as a user does, again where a click came too early.
HWND awaitBox(const DialogDriver& dialogs, const std::string& caption, int button = 0);
// Brings the parameter dialog to the front, where no other box holds it.
void awaitPanel(const DialogDriver& dialogs);

// A message box over the parameter dialog.
struct Prompt {
  std::string text;
  std::vector<std::string> buttons;
  bool isOverPanel = false;  // and holds it

  bool operator==(const Prompt&) const = default;
};
std::ostream& operator<<(std::ostream& stream, const Prompt& prompt);

// Waits for the box of that caption, for which a button may have to be pressed, reads it, and
// answers by a click on one of its own. The box is gone afterwards.
Prompt answer(const DialogDriver& dialogs, const std::string& caption, int button, int pressed = 0);

// Presses "open..." and types the path into the system's dialog.
void openPresets(const DialogDriver& dialogs, const std::string& path);

}  // namespace radiashafts::test
