// The filter's two dialogs in the hands of a user: controls are worked by mouse and keyboard, and
// read by messages and from the screen.
#pragma once

#include <windows.h>

#include <map>
#include <string>

#include "tests/dialogs/input.h"

namespace radiashafts::test {

// The visible dialog with the caption in the process; null when it does not come.
HWND awaitDialog(DWORD process, const std::string& caption);

class DialogDriver {
 public:
  // Waits for the dialogs of the process and puts them side by side. isOpen tells of success.
  explicit DialogDriver(DWORD process, SIZE previewSize = {420, 420});

  // A dialog of the system, in the place of the parameter dialog.
  static DialogDriver over(HWND dialog);

  bool isOpen() const { return panel_ != nullptr && preview_ != nullptr; }
  HWND panel() const { return panel_; }
  HWND preview() const { return preview_; }
  HWND control(int id) const { return GetDlgItem(panel_, id); }
  bool isClosed() const { return IsWindow(panel_) == FALSE; }

  // ---- The parameter dialog
  std::string text(int id) const;
  double number(int id) const;  // of an edit; NaN where it shows none
  int sliderPosition(int id) const;
  int entry(int id) const;  // of a list, from 0
  bool isChecked(int id) const;
  COLORREF swatch(int id) const;
  // What all controls of the parameters show.
  std::map<std::string, std::string> state() const;

  POINT middleOf(int id) const;
  void clickOn(int id, Button button = Button::left) const;
  void takeFocus(int id) const;  // by a click; sliders by the way of the edit behind them
  HWND focused() const;
  // Replaces the text of an edit, key by key.
  void replaceText(int id, const std::string& text) const;
  void dragThumb(int id, int position) const;
  void chooseEntry(int id, int index) const;

  // ---- The preview
  RECT frame() const;                 // on the screen
  POINT onScreen(POINT point) const;  // of a point in the frame
  // Zooms by the buttons until the percentage stands.
  bool zoomTo(const std::string& percentage) const;
  void hideHandle() const;

 private:
  DialogDriver() = default;
  void activate() const;
  LRESULT ask(int id, UINT message, WPARAM w = 0) const {
    return SendMessageA(control(id), message, w, 0);
  }

  HWND panel_ = nullptr;
  HWND preview_ = nullptr;
};

}  // namespace radiashafts::test
