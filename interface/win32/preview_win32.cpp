#include "interface/win32/preview_win32.h"

#include <algorithm>

#include <commdlg.h>

#include "diagnostics/debug_log.h"
#include "image/unit_scale.h"
#include "interface/model/chosen_color.h"
#include "interface/model/live_preview.h"
#include "interface/model/remembered_settings.h"
#include "interface/win32/dialog_ids.h"
#include "interface/win32/interface_end.h"
#include "interface/win32/visual_style.h"

namespace radiashafts {

std::unique_ptr<pfPreview> MakePreview() {
  return std::make_unique<pfPreviewWin32>();
}

// RAII: closes the dialogs and the view when Show returns or throws.
class pfPreviewWin32::OpenInterface {
 public:
  OpenInterface(pfPreviewWin32& preview, EditedFilter* filter, hostapi::FilterRecord* record)
      : preview_(preview) {
    interfaceEnd().reset();
    preview.view_.open(filter, record);
    preview.parameters_.presets().open(filter);
  }
  ~OpenInterface() {
    preview_.closeDialogs();
    preview_.view_.close();
    platform::setDefaultFloatingPoint();
  }
  OpenInterface(const OpenInterface&) = delete;
  OpenInterface& operator=(const OpenInterface&) = delete;

 private:
  pfPreviewWin32& preview_;
};

bool pfPreviewWin32::Show(EditedFilter* filter, hostapi::FilterRecord* record,
                          WidgetList* widgets) {
  trace("pfPreviewWin32::Show( pFilter(0x", static_cast<void*>(filter), "), pFilterRecord(0x",
        static_cast<void*>(record), ") )");
  const LogIndent indent;
  const VisualStyle style;
  bool confirmed = false;
  {
    const OpenInterface open(*this, filter, record);
    if (openDialogs(widgets)) {
      hostWindow_.disable();
      showDialogs();
      confirmed = runMessageLoop();
    }
  }
  interfaceEnd().rethrow();
  if (confirmed) WriteLastUsedSettings(filter->parameters);
  trace("pfPreviewWin32::Show( return(", confirmed, ") )");
  return confirmed;
}

bool pfPreviewWin32::openDialogs(WidgetList* widgets) {
  if (!hostDrawsCorrectly(view_.record())) view_.disableHostDrawing();
  if (!preview_.create(ID_PREVIEW_DIALOG, hostWindow_.ownerFor(view_.record()), "Preview") ||
      !parameters_.create(ID_PARAMETER_DIALOG, preview_.window(), "Interface")) {
    return false;
  }
  preview_.forwardKeysTo(parameters_.window());
  platform::setMessageFilter(this);
  pipette_.load();
  preview_.loadCursors();
  platform::setDefaultFloatingPoint();
  view_.FitScaleToFrame();
  editing_.open(widgets, &parameters_.controls());
  return !interfaceEnd().isEnding();
}

void pfPreviewWin32::showDialogs() {
  view_.filter().undoHistory.bEnabled = true;
  parameters_.presets().UpdateSettingsList();
  trace("Updated Settings List");
  view_.UpdateUndoButtons();
  trace("Updated Undo Buttons");
  ShowWindow(preview_.window(), SW_SHOWNA);
  ShowWindow(parameters_.window(), SW_SHOW);
  SetForegroundWindow(parameters_.window());  // its OK button has the focus
  trace("windows up");
  view_.AssignScaleFactor(view_.requestedFactor());
  trace("assigned scale factor");
  view_.filter().PrepareInterface(&view_.record());
  trace("pre show done. Going into message loop");
  view_.RequestRender();
}

// Paint messages do not delay a render, which dispatches them itself when it pumps messages. A
// render pending at OK or Cancel is executed before the loop ends; a running one is cancelled. A
// quit message belongs to the host and is posted again.
bool pfPreviewWin32::runMessageLoop() {
  constexpr UINT allButPaint = PM_QS_INPUT | PM_QS_POSTMESSAGE | PM_QS_SENDMESSAGE;
  const InterfaceEnd& end = interfaceEnd();
  MSG message;
  BOOL got = TRUE;
  while (got > 0 && !end.isEnding() && (got = GetMessageA(&message, nullptr, 0, 0)) > 0) {
    for (MSG next; got > 0;) {
      if (!take(message)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
      }
      if (end.isEnding()) break;
      if (PeekMessageA(&next, nullptr, 0, 0, PM_NOREMOVE | allButPaint) == FALSE) break;
      got = GetMessageA(&message, nullptr, 0, 0);
    }
    platform::setDefaultFloatingPoint();  // other window procedures may have changed it
    if (!end.allowsRender() || !view_.needsRender()) continue;
    bInterfaceEnded = false;
    view_.RenderUntilFinal();
  }
  if (got == 0) PostQuitMessage(static_cast<int>(message.wParam));
  return end.isConfirmed();
}

// Keys of the whole interface, then those of the dialog manager.
bool pfPreviewWin32::take(MSG& message) {
  if (takeKey(message) || parameters_.takeStep(message)) return true;
  if (IsDialogMessageA(parameters_.window(), &message) == FALSE) return false;
  parameters_.showFocus();
  return true;
}

bool pfPreviewWin32::takeKey(const MSG& message) {
  const bool pressed = message.message == WM_KEYDOWN;
  if (!pressed && message.message != WM_KEYUP) return false;
  const HWND root = GetAncestor(message.hwnd, GA_ROOT);
  if (root != parameters_.window() && root != preview_.window()) return false;
  if (message.wParam == 'B') {
    // Letters belong to an edit, and to an open list.
    const bool typed = pressed && (isEdit(message.hwnd) ||
                                   SendMessageA(message.hwnd, CB_GETDROPPEDSTATE, 0, 0) != 0);
    if (typed || GetKeyState(VK_CONTROL) < 0) return false;
    view_.showUntouched(pressed);
    return true;
  }
  if (!pressed) return false;
  if (GetKeyState(VK_CONTROL) < 0 && message.wParam == 'Z') {
    editing_.Undo();
  } else if (GetKeyState(VK_CONTROL) < 0 && message.wParam == 'Y') {
    editing_.Redo();
  } else if (message.wParam == VK_F6 && root == parameters_.window()) {
    SetActiveWindow(preview_.window());
  } else {
    return false;
  }
  return true;
}

void pfPreviewWin32::closeDialogs() {
  platform::setMessageFilter(nullptr);
  pointer_.cancelDrag();
  editing_.close();
  hostWindow_.enable();  // before its dialogs close, or another program comes to the foreground
  if (!hostWindow_.isResponding()) preview_.detachOwner();
  parameters_.destroy();
  preview_.destroy();
  preview_.release();
  pipette_.release();
}

bool pfPreviewWin32::AlternativeColorSelection(hostapi::FilterRecord* record, double* red,
                                               double* green, double* blue) {
  trace("pfPreviewWin32::AlternativeColorSelection( pFilterRecord(0x", static_cast<void*>(record),
        "), fRed(", *red, "), fGreen(", *green, "), fBlue(", *blue, ") )");
  static COLORREF customColors[16];
  const auto toByte = [](double channel) {
    return static_cast<BYTE>(std::clamp(wholePixels(channel * 255.0), 0, 255));
  };
  CHOOSECOLORA request{};
  request.lStructSize = sizeof request;
  request.hwndOwner = parameters_.window();
  request.rgbResult = RGB(toByte(*red), toByte(*green), toByte(*blue));
  request.lpCustColors = customColors;
  request.Flags = CC_RGBINIT | CC_FULLOPEN | CC_ANYCOLOR;
  const SystemDialog dialog;
  parameters_.enable(true);  // the chooser disables and enables its owner itself
  const bool chosen = ChooseColorA(&request) != FALSE;
  if (chosen) {
    *red = GetRValue(request.rgbResult) * byteToUnit;
    *green = GetGValue(request.rgbResult) * byteToUnit;
    *blue = GetBValue(request.rgbResult) * byteToUnit;
  }
  trace("pfPreviewWin32::AlternativeColorSelection( return(", chosen, ") fRed(", *red, "), fGreen(",
        *green, "), fBlue(", *blue, ") )");
  return chosen;
}

// When enabled again, the parameter dialog becomes the active window.
void pfPreviewWin32::enableDialogs(bool enabled) {
  parameters_.enable(enabled);
  preview_.enable(enabled);
  if (enabled) SetForegroundWindow(parameters_.window());
}

}  // namespace radiashafts
