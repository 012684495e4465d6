#include "diagnostics/debug_log.h"
#include "interface/model/preview.h"
#include "interface/win32/dialog.h"
#include "interface/win32/dialog_font.h"
#include "interface/win32/dialog_ids.h"
#include "interface/win32/interface_end.h"
#include "interface/win32/visual_style.h"

namespace radiashafts {
namespace {

// Shown below the text; every build is a full version.
constexpr char licenceText[] = "full version";

void showIcon(HWND dialog) {
  setIcon(dialog);
  constexpr int largestSide = 48;  // of the icon's pictures, in pixels
  const HANDLE icon = LoadImageA(moduleInstance(), MAKEINTRESOURCEA(ID_DIALOG_ICON), IMAGE_ICON,
                                 largestSide, largestSide, LR_SHARED);
  SendDlgItemMessageA(dialog, ID_ABOUT_ICON, STM_SETIMAGE, IMAGE_ICON,
                      reinterpret_cast<LPARAM>(icon));
}

struct AboutRequest {
  const std::string& text;
  DialogFont font;
};

INT_PTR AboutProcedure(HWND dialog, UINT message, WPARAM w, LPARAM l) {
  switch (message) {
    case WM_INITDIALOG: {
      auto& request = *reinterpret_cast<AboutRequest*>(l);
      SetDlgItemTextA(dialog, ID_ABOUT_TEXT, (request.text + "\n" + licenceText).c_str());
      showIcon(dialog);
      request.font.apply(dialog);
      return TRUE;
    }
    case WM_COMMAND:
      if (LOWORD(w) == IDOK || LOWORD(w) == IDCANCEL) EndDialog(dialog, 0);
      return TRUE;
    default:
      return FALSE;
  }
}

}  // namespace

void ShowAbout(const std::string& text) {
  trace("ShowAbout()");
  const VisualStyle style;
  interfaceEnd().reset();
  AboutRequest request{text, {}};
  {
    const SystemDialog dialog;
    DialogBoxParamA(moduleInstance(), MAKEINTRESOURCEA(ID_ABOUT_DIALOG), nullptr,
                    windowProcedure<AboutProcedure>, reinterpret_cast<LPARAM>(&request));
  }
  interfaceEnd().rethrow();
}

}  // namespace radiashafts
