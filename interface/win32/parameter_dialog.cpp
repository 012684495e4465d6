// The parameter dialog's messages.

#include <windows.h>

#include <windowsx.h>

#include "diagnostics/debug_log.h"
#include "interface/model/live_preview.h"
#include "interface/model/remembered_settings.h"
#include "interface/win32/dialog_ids.h"
#include "interface/win32/interface_end.h"
#include "interface/win32/preview_win32.h"

namespace radiashafts {

INT_PTR pfPreviewWin32::UIProcedure(HWND dialog, UINT message, WPARAM w, LPARAM l) {
  if (message == WM_INITDIALOG) {
    SetWindowLongPtrA(dialog, DWLP_USER, l);
    reinterpret_cast<pfPreviewWin32*>(l)->m_hInterface = dialog;
  }
  auto* self = reinterpret_cast<pfPreviewWin32*>(GetWindowLongPtrA(dialog, DWLP_USER));
  return self == nullptr ? FALSE : self->onInterfaceMessage(message, w, l);
}

INT_PTR pfPreviewWin32::onInterfaceMessage(UINT message, WPARAM w, LPARAM l) {
  const Point point{GET_X_LPARAM(l), GET_Y_LPARAM(l)};
  switch (message) {
    case WM_INITDIALOG:
      onInterfaceOpens();
      return FALSE;  // the focus is at OK
    case WM_DESTROY:
      onInterfaceCloses();
      return TRUE;
    case WM_PAINT:
      PaintSwatches(PaintContext(m_hInterface).get());
      return TRUE;
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX: {
      const auto context = reinterpret_cast<HDC>(w);
      SetTextColor(context, RGB(255, 0, 0));
      SetBkColor(context, RGB(255, 255, 255));
      return reinterpret_cast<INT_PTR>(GetStockObject(WHITE_BRUSH));
    }
    case WM_SETCURSOR:
      if (!setCursor()) return FALSE;
      SetWindowLongPtrA(m_hInterface, DWLP_MSGRESULT, TRUE);
      return TRUE;
    case WM_LBUTTONDOWN:
      editing_.OnInterfaceLeftDown(point);
      return TRUE;
    case WM_LBUTTONUP:
      editing_.OnInterfaceLeftUp();
      return TRUE;
    case WM_RBUTTONUP:
      editing_.OnSwatchRightUp(point);
      return TRUE;
    case WM_HSCROLL:
    case WM_VSCROLL:
      editing_.OnScroll(GetDlgCtrlID(reinterpret_cast<HWND>(l)), LOWORD(w) == SB_ENDSCROLL);
      return TRUE;
    case WM_COMMAND:
      onCommand(LOWORD(w), HIWORD(w));
      return TRUE;
    default:
      return FALSE;
  }
}

void pfPreviewWin32::onInterfaceOpens() {
  const hostapi::Point whole = view_.record().wholeSize;
  const bool told = whole.h > 0 && whole.v > 0;
  controls_.attach(m_hInterface, told ? Extent{whole.h, whole.v} : view_.imageSize());
  SendDlgItemMessageA(m_hInterface, ID_PRESETS, CB_SETDROPPEDWIDTH, droppedPresetsWidth(), 0);
  SetFocus(GetDlgItem(m_hInterface, IDOK));

  ParameterWindow window;
  window.presetPath = presets_.path();
  window.showHandle = bShowHandle;
  window.livePreview = bLivePreview;
  ReadParameterWindow(window, screenMetrics());
  presets_.setPath(window.presetPath);
  bShowHandle = window.showHandle;
  bLivePreview = window.livePreview;
  CheckDlgButton(m_hInterface, ID_HIDE_HANDLE, bShowHandle ? BST_UNCHECKED : BST_CHECKED);
  CheckDlgButton(m_hInterface, ID_FIXED_PREVIEW, bLivePreview ? BST_UNCHECKED : BST_CHECKED);
  SetWindowPos(m_hInterface, nullptr, window.x, window.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  ReadLastUsedSettings(view_.filter().parameters);
}

void pfPreviewWin32::onInterfaceCloses() {
  WINDOWPLACEMENT placement{};
  placement.length = sizeof placement;
  if (GetWindowPlacement(m_hInterface, &placement) != FALSE) {
    const RECT& rect = placement.rcNormalPosition;
    WriteParameterWindow({rect.left, rect.top, presets_.path(), bShowHandle, bLivePreview});
  }
  onDestroyed();
}

// Names of presets may be long: the open list takes the row's whole width.
WPARAM pfPreviewWin32::droppedPresetsWidth() const {
  return static_cast<WPARAM>(controlRect(m_hInterface, ID_DELETE_PRESET).right -
                             controlRect(m_hInterface, ID_PRESETS).left);
}

void pfPreviewWin32::onCommand(int id, int notification) {
  const bool clicked = notification == BN_CLICKED;
  switch (id) {
    case IDOK:
      if (!clicked) return;
      trace("UIProcedure - WM_COMMAND OK pressed.");
      interfaceEnd().ask(true);
      return;
    case IDCANCEL:
      if (!clicked) return;
      trace("UIProcedure - WM_COMMAND CANCEL pressed.");
      interfaceEnd().ask(false);
      return;
    case ID_PRESETS:
      if (notification != CBN_SELCHANGE) return;
      presets_.OnSelectSetting();
      view_.filter().parameters.UpdateAllWidgets();
      view_.RequestRender();
      return;
    case ID_SAVE_PRESET:
      presets_.OnSaveSetting();
      return;
    case ID_DELETE_PRESET:
      presets_.OnDeleteSetting();
      view_.UpdateUndoButtons();
      return;
    case ID_OPEN_PRESETS:
      presets_.OnChangeSettingFile();
      return;
    case ID_UNDO:
      editing_.Undo();
      return;
    case ID_REDO:
      editing_.Redo();
      return;
    case ID_ZOOM_IN:
      if (clicked) view_.ZoomBy(-1);
      return;
    case ID_ZOOM_OUT:
      if (clicked) view_.ZoomBy(1);
      return;
    case ID_RESET:
      editing_.Reset();
      return;
    case ID_FIXED_PREVIEW:
      bLivePreview = !bLivePreview;
      return;
    case ID_HIDE_HANDLE:
      bShowHandle = !bShowHandle;
      invalidateFrame();
      return;
    default:
      break;
  }
  if (notification == EN_KILLFOCUS) {
    editing_.OnEditKillFocus(id);
  } else if (clicked || notification == CBN_SELCHANGE || notification == EN_CHANGE) {
    editing_.OnControlChange(id, true);
  }
}

void pfPreviewWin32::PaintSwatches(HDC context) {
  for (const ParameterEditing::Swatch& swatch : editing_.swatches()) {
    RECT rect = controlRect(m_hInterface, swatch.id);
    FrameRect(context, &rect, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    InflateRect(&rect, -1, -1);
    const HBRUSH brush = CreateSolidBrush(RGB(swatch.color[0], swatch.color[1], swatch.color[2]));
    FillRect(context, &rect, brush);
    DeleteObject(brush);
  }
}

}  // namespace radiashafts
