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
namespace {

void setIcon(HWND dialog) {
  const auto load = [](int metric) {
    const int side = GetSystemMetrics(metric);
    return reinterpret_cast<LPARAM>(LoadImageA(moduleInstance(), MAKEINTRESOURCEA(ID_DIALOG_ICON),
                                               IMAGE_ICON, side, side, LR_SHARED));
  };
  SendMessageA(dialog, WM_SETICON, ICON_SMALL, load(SM_CXSMICON));
  SendMessageA(dialog, WM_SETICON, ICON_BIG, load(SM_CXICON));
}

void logNoDialog(const char* name) {
  logLine(severityError, errorMarker, "Failed to create ", name, " Dialog. GetLastError(",
          GetLastError(), ")");
}

}  // namespace

std::unique_ptr<pfPreview> MakePreview() {
  return std::make_unique<pfPreviewWin32>();
}

// From the opening of the interface to its end, however that comes.
class pfPreviewWin32::Opening {
 public:
  Opening(pfPreviewWin32& preview, EditedFilter* filter, hostapi::FilterRecord* record)
      : preview_(preview) {
    interfaceEnd().reset();
    preview.closing_ = false;
    preview.view_.open(filter, record);
    preview.presets_.open(filter);
  }
  ~Opening() {
    preview_.closeDialogs();
    preview_.view_.close();
    platform::setDefaultFloatingPoint();
  }
  Opening(const Opening&) = delete;
  Opening& operator=(const Opening&) = delete;

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
    const Opening opening(*this, filter, record);
    if (openDialogs(widgets)) {
      hostWindow_.rest();
      prepare();
      confirmed = runMessageLoop();
    }
  }
  interfaceEnd().rethrow();
  if (confirmed) WriteLastUsedSettings(filter->parameters);
  trace("pfPreviewWin32::Show( return(", confirmed, ") )");
  return confirmed;
}

// The system's own class icons and cursors are the host's too and are left alone; each dialog has
// its own.
bool pfPreviewWin32::openDialogs(WidgetList* widgets) {
  if (!hostDrawsAsTold(view_.record())) view_.drawWithoutHost();
  m_hPreview = CreateDialogParamA(
      moduleInstance(), MAKEINTRESOURCEA(ID_PREVIEW_DIALOG), hostWindow_.ownerFor(view_.record()),
      windowProcedure<PreviewProcedure>, reinterpret_cast<LPARAM>(this));
  if (m_hPreview == nullptr) {
    logNoDialog("Preview");
    return false;
  }
  setIcon(m_hPreview);
  m_hInterface =
      CreateDialogParamA(moduleInstance(), MAKEINTRESOURCEA(ID_PARAMETER_DIALOG), m_hPreview,
                         windowProcedure<UIProcedure>, reinterpret_cast<LPARAM>(this));
  if (m_hInterface == nullptr) {
    logNoDialog("Interface");
    return false;
  }
  setIcon(m_hInterface);
  pickerCursor_ = static_cast<HCURSOR>(LoadImageA(
      moduleInstance(), MAKEINTRESOURCEA(ID_PIPETTE_CURSOR), IMAGE_CURSOR, 0, 0, LR_DEFAULTSIZE));
  platform::setDefaultFloatingPoint();
  view_.FitScaleToFrame();
  editing_.open(widgets, &controls_);
  return !interfaceEnd().hasCome();
}

void pfPreviewWin32::prepare() {
  view_.filter().undoHistory.bEnabled = true;
  presets_.UpdateSettingsList();
  trace("Updated Settings List");
  view_.UpdateUndoButtons();
  trace("Updated Undo Buttons");
  ShowWindow(m_hInterface, SW_SHOW);
  ShowWindow(m_hPreview, SW_SHOW);
  SetForegroundWindow(m_hInterface);  // the keyboard begins at OK
  trace("windows up");
  view_.AssignScaleFactor(view_.requestedFactor());
  trace("assigned scale factor");
  view_.filter().PrepareInterface(&view_.record());
  trace("pre show done. Going into message loop");
  view_.RequestRender();
}

// Windows that want to be painted do not hold a render up: it paints them when it looks for
// messages. A render that was wanted before the end is done first; one that runs when it comes is
// not. A quit message is the host's and is given back to it.
bool pfPreviewWin32::runMessageLoop() {
  constexpr UINT allButPaint = PM_QS_INPUT | PM_QS_POSTMESSAGE | PM_QS_SENDMESSAGE;
  const InterfaceEnd& end = interfaceEnd();
  MSG message;
  BOOL got = TRUE;
  while (got > 0 && !end.hasCome() && (got = GetMessageA(&message, nullptr, 0, 0)) > 0) {
    for (MSG next; got > 0;) {
      if (IsDialogMessageA(m_hInterface, &message) == FALSE) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
      }
      if (end.hasCome()) break;
      if (PeekMessageA(&next, nullptr, 0, 0, PM_NOREMOVE | allButPaint) == FALSE) break;
      got = GetMessageA(&message, nullptr, 0, 0);
    }
    platform::setDefaultFloatingPoint();  // windows of others may have left their own
    if (!end.allowsRender() || !view_.needsRender()) continue;
    bInterfaceEnded = false;
    view_.RenderUntilFinal();
  }
  if (got == 0) PostQuitMessage(static_cast<int>(message.wParam));
  return end.isConfirmed();
}

void pfPreviewWin32::closeDialogs() {
  closing_ = true;
  pointer_.letGo();
  editing_.close();
  hostWindow_.wake();  // before its dialogs go, or another program comes to the front
  // Else its thread would have to look at messages for them to go.
  if (m_hPreview != nullptr && !hostWindow_.answers()) {
    SetWindowLongPtrA(m_hPreview, GWLP_HWNDPARENT, 0);
  }
  if (m_hInterface != nullptr) DestroyWindow(m_hInterface);
  if (m_hPreview != nullptr) DestroyWindow(m_hPreview);
  m_hInterface = m_hPreview = nullptr;
  painting_.release();
  if (pickerCursor_ != nullptr) DestroyCursor(pickerCursor_);
  pickerCursor_ = nullptr;
}

void pfPreviewWin32::onDestroyed() {
  if (!closing_) interfaceEnd().windowGone();
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
  request.hwndOwner = m_hInterface;
  request.rgbResult = RGB(toByte(*red), toByte(*green), toByte(*blue));
  request.lpCustColors = customColors;
  request.Flags = CC_RGBINIT | CC_FULLOPEN | CC_ANYCOLOR;
  const SystemDialog dialog;
  EnableWindow(m_hInterface, TRUE);  // the chooser rests and wakes its owner itself
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

Extent pfPreviewWin32::frameSize() const {
  const RECT rect = controlRect(m_hPreview, ID_PREVIEW_FRAME);
  return {rect.right - rect.left, rect.bottom - rect.top};
}

void pfPreviewWin32::invalidateFrame() {
  if (m_hPreview == nullptr) return;
  const RECT rect = controlRect(m_hPreview, ID_PREVIEW_FRAME);
  InvalidateRect(m_hPreview, &rect, FALSE);
}

void pfPreviewWin32::paintNow() {
  UpdateWindow(m_hPreview);
}

void pfPreviewWin32::setPercentage(const std::string& text) {
  SetDlgItemTextA(m_hInterface, ID_PERCENTAGE, text.c_str());
}

void pfPreviewWin32::setCaption(const std::string& text) {
  SetWindowTextA(m_hPreview, text.c_str());
}

void pfPreviewWin32::enableHistory(bool undo, bool redo) {
  enableControl(ID_UNDO, undo);
  enableControl(ID_REDO, redo);
}

void pfPreviewWin32::enableControl(int id, bool enabled) {
  const HWND control = GetDlgItem(m_hInterface, id);
  if (!enabled && control != nullptr && GetFocus() == control) {
    SendMessageA(m_hInterface, WM_NEXTDLGCTL, 0, FALSE);
  }
  if (enabled != (IsWindowEnabled(control) != FALSE)) EnableWindow(control, enabled ? TRUE : FALSE);
}

void pfPreviewWin32::captureMouse() {
  SetCapture(m_hPreview);
}

void pfPreviewWin32::releaseMouse() {
  if (m_hPreview == nullptr || GetCapture() != m_hPreview) return;
  releasing_ = true;
  ReleaseCapture();
  releasing_ = false;
}

void pfPreviewWin32::usePipetteCursor(bool pipette) {
  if (pipette == pipetteShown_) return;
  pipetteShown_ = pipette;
  SetCursor(pipette && pickerCursor_ != nullptr ? pickerCursor_ : LoadCursorA(nullptr, IDC_ARROW));
}

bool pfPreviewWin32::setCursor() {
  if (!pipetteShown_ || pickerCursor_ == nullptr) return false;
  SetCursor(pickerCursor_);
  return true;
}

std::optional<std::array<std::uint8_t, 3>> pfPreviewWin32::screenColor(Point point) {
  const HDC context = GetDC(m_hPreview);
  const COLORREF color = GetPixel(context, point.x, point.y);
  ReleaseDC(m_hPreview, context);
  if (color == CLR_INVALID) return std::nullopt;
  return std::array<std::uint8_t, 3>{GetRValue(color), GetGValue(color), GetBValue(color)};
}

// When they come back the parameter dialog is the active window again.
void pfPreviewWin32::enableDialogs(bool enabled) {
  EnableWindow(m_hInterface, enabled ? TRUE : FALSE);
  EnableWindow(m_hPreview, enabled ? TRUE : FALSE);
  if (enabled) SetForegroundWindow(m_hInterface);
}

Box pfPreviewWin32::controlBox(int id) const {
  const RECT rect = controlRect(m_hInterface, id);
  return {rect.left, rect.top, rect.right, rect.bottom};
}

}  // namespace radiashafts
