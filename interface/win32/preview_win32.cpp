#include "interface/win32/preview_win32.h"

#include <algorithm>

#include <commdlg.h>

#include "diagnostics/debug_log.h"
#include "interface/chosen_color.h"
#include "interface/dialog_ids.h"
#include "interface/live_preview.h"
#include "interface/remembered_settings.h"
#include "interface/win32/visual_style.h"

namespace radiashafts {
namespace {

HWND ownerWindow(const hostapi::FilterRecord& record) {
  if (record.platformData == nullptr) return nullptr;
  const auto window = static_cast<HWND>(record.platformData->ownerWindow);
  return IsWindow(window) != FALSE ? window : nullptr;
}

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

bool pfPreviewWin32::Show(EditedFilter* filter, hostapi::FilterRecord* record,
                          WidgetList* widgets) {
  trace("pfPreviewWin32::Show( pFilter(0x", static_cast<void*>(filter), "), pFilterRecord(0x",
        static_cast<void*>(record), ") )");
  const LogIndent indent;
  const VisualStyle style;
  closing_ = quitting_ = confirmed_ = gone_ = false;
  view_.open(filter, record);
  presets_.open(filter);
  bool confirmed = false;
  if (openDialogs(widgets)) {
    restOwner();
    prepare();
    confirmed = runMessageLoop();
  }
  closeDialogs();
  if (confirmed) WriteLastUsedSettings(filter->parameters);
  view_.close();
  trace("pfPreviewWin32::Show( return(", confirmed, ") )");
  return confirmed;
}

// The system's own class icons and cursors are the host's too and are left alone; each dialog has
// its own.
bool pfPreviewWin32::openDialogs(WidgetList* widgets) {
  m_hPreview = CreateDialogParamA(moduleInstance(), MAKEINTRESOURCEA(ID_PREVIEW_DIALOG),
                                  ownerWindow(view_.record()), PreviewProcedure,
                                  reinterpret_cast<LPARAM>(this));
  if (m_hPreview == nullptr) {
    logNoDialog("Preview");
    return false;
  }
  setIcon(m_hPreview);
  m_hInterface = CreateDialogParamA(moduleInstance(), MAKEINTRESOURCEA(ID_PARAMETER_DIALOG),
                                    m_hPreview, UIProcedure, reinterpret_cast<LPARAM>(this));
  if (m_hInterface == nullptr) {
    logNoDialog("Interface");
    return false;
  }
  setIcon(m_hInterface);
  pickerCursor_ = static_cast<HCURSOR>(LoadImageA(
      moduleInstance(), MAKEINTRESOURCEA(ID_PIPETTE_CURSOR), IMAGE_CURSOR, 0, 0, LR_DEFAULTSIZE));
  view_.FitScaleToFrame();
  editing_.open(widgets, &controls_);
  return true;
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
// messages. A render that was wanted before the quit message is done first. A quit message that is
// the host's own is given back to it, and none of ours is left.
bool pfPreviewWin32::runMessageLoop() {
  constexpr UINT allButPaint = PM_QS_INPUT | PM_QS_POSTMESSAGE | PM_QS_SENDMESSAGE;
  MSG message;
  BOOL got = TRUE;
  while (got > 0 && !gone_ && (got = GetMessageA(&message, nullptr, 0, 0)) > 0) {
    for (MSG next; got > 0;) {
      if (IsDialogMessageA(m_hInterface, &message) == FALSE) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
      }
      if (gone_ || PeekMessageA(&next, nullptr, 0, 0, PM_NOREMOVE | allButPaint) == FALSE) break;
      got = GetMessageA(&message, nullptr, 0, 0);
    }
    if (!gone_ && view_.needsRender()) view_.RenderUntilFinal();
  }
  if (got == 0 && !quitting_) PostQuitMessage(static_cast<int>(message.wParam));
  if (got > 0 && quitting_) PeekMessageA(&message, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE);
  return confirmed_ && !gone_;
}

void pfPreviewWin32::closeDialogs() {
  closing_ = true;
  pointer_.letGo();
  editing_.close();
  wakeOwner();  // before its dialogs go, or another program comes to the front
  if (m_hInterface != nullptr) DestroyWindow(m_hInterface);
  if (m_hPreview != nullptr) DestroyWindow(m_hPreview);
  m_hInterface = m_hPreview = nullptr;
  painting_.release();
  if (pickerCursor_ != nullptr) DestroyCursor(pickerCursor_);
  pickerCursor_ = nullptr;
}

void pfPreviewWin32::onDestroyed() {
  if (closing_) return;
  gone_ = true;
  PostThreadMessageA(GetCurrentThreadId(), WM_NULL, 0, 0);  // wakes the loop
}

void pfPreviewWin32::quit(bool confirmed) {
  if (quitting_) return;
  quitting_ = true;
  confirmed_ = confirmed;
  PostQuitMessage(confirmed ? 1 : 0);
}

// One of another process is left alone: it would rest for good if this process ended early.
void pfPreviewWin32::restOwner() {
  const HWND owner = ownerWindow(view_.record());
  const HWND window = owner == nullptr ? nullptr : GetAncestor(owner, GA_ROOT);
  DWORD process = 0;
  if (window != nullptr) GetWindowThreadProcessId(window, &process);
  if (process != GetCurrentProcessId() || IsWindowEnabled(window) == FALSE) return;
  restingOwner_ = window;
  EnableWindow(window, FALSE);
}

void pfPreviewWin32::wakeOwner() {
  if (restingOwner_ != nullptr && IsWindow(restingOwner_) != FALSE) {
    EnableWindow(restingOwner_, TRUE);
  }
  restingOwner_ = nullptr;
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
  EnableWindow(m_hInterface, TRUE);  // the chooser rests and wakes its owner itself
  const bool chosen = ChooseColorA(&request) != FALSE;
  if (chosen) {
    *red = GetRValue(request.rgbResult) * channelOfByte;
    *green = GetGValue(request.rgbResult) * channelOfByte;
    *blue = GetBValue(request.rgbResult) * channelOfByte;
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
