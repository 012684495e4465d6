#include "interface/win32/parameter_dialog.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "diagnostics/debug_log.h"
#include "interface/model/live_preview.h"
#include "interface/model/remembered_settings.h"
#include "interface/win32/dialog_ids.h"
#include "interface/win32/dialog_scaling.h"
#include "interface/win32/window_place.h"

namespace radiashafts {
namespace {

// By the mouse or a key. The wheel moves a slider without holding it, and no end is told.
bool isHeld(HWND slider) {
  if (GetCapture() == slider) return true;
  constexpr int keys[] = {VK_LEFT, VK_RIGHT, VK_UP, VK_DOWN, VK_PRIOR, VK_NEXT, VK_HOME, VK_END};
  return std::any_of(std::begin(keys), std::end(keys),
                     [](int key) { return GetKeyState(key) < 0; });
}

}  // namespace

INT_PTR ParameterDialog::onMessage(UINT message, WPARAM w, LPARAM l) {
  switch (message) {
    case WM_INITDIALOG:
      onOpen();
      return FALSE;  // onOpen has set the focus to OK
    case WM_DESTROY:
      onDestroy();
      return TRUE;
    case WM_DRAWITEM:
      PaintSwatch(*reinterpret_cast<const DRAWITEMSTRUCT*>(l));
      return TRUE;
    case WM_CTLCOLOREDIT:
    case WM_CTLCOLORLISTBOX:
      return colors().colorEdit(reinterpret_cast<HDC>(w));
    case WM_ACTIVATE:
      if (LOWORD(w) == WA_INACTIVE) preview_.onDeactivated(reinterpret_cast<HWND>(l));
      return FALSE;  // the system keeps the focus
    case WM_SETCURSOR:
      if (!pipette_.set()) return FALSE;
      setResult(TRUE);
      return TRUE;
    case WM_LBUTTONUP:
    case WM_RBUTTONUP:
      editing_.deactivatePipette();
      return TRUE;
    case WM_CONTEXTMENU:  // by the right mouse button or by a key
      editing_.ActivatePipette(GetDlgCtrlID(reinterpret_cast<HWND>(w)));
      return TRUE;
    case WM_HSCROLL:
    case WM_VSCROLL: {
      if (l == 0) {
        scroll_.onBar(LOWORD(w));
        return TRUE;
      }
      const HWND slider = reinterpret_cast<HWND>(l);
      editing_.OnScroll(GetDlgCtrlID(slider), LOWORD(w) == SB_ENDSCROLL || !isHeld(slider));
      return TRUE;
    }
    case WM_MOUSEWHEEL:
      scroll_.onWheel(GET_WHEEL_DELTA_WPARAM(w));
      return TRUE;
    case WM_SIZE:
      if (!isScaling()) scroll_.update();
      return TRUE;
    case WM_COMMAND:
      if (const int id = labelledControl(reinterpret_cast<HWND>(l)); id != 0) {
        onLabel(id, HIWORD(w));
      } else {
        onCommand(LOWORD(w), HIWORD(w));
      }
      return TRUE;
    default:
      return FALSE;
  }
}

void ParameterDialog::onOpen() {
  const hostapi::Point whole = view_.record().wholeSize;
  const bool hasWholeSize = whole.h > 0 && whole.v > 0;
  controls_.attach(window(), hasWholeSize ? Extent{whole.h, whole.v} : view_.imageSize());
  SendDlgItemMessageA(window(), ID_PRESETS, CB_SETDROPPEDWIDTH, droppedPresetsWidth(), 0);
  SetFocus(GetDlgItem(window(), IDOK));

  ParameterPlacement placement;
  placement.presetPath = presets().path();
  placement.showHandle = preview_.showsHandle();
  placement.livePreview = bLivePreview;
  ReadParameterPlacement(placement, screenMetrics());
  presets().setPath(placement.presetPath);
  preview_.showHandle(placement.showHandle);
  bLivePreview = placement.livePreview;
  CheckDlgButton(window(), ID_HIDE_HANDLE, preview_.showsHandle() ? BST_UNCHECKED : BST_CHECKED);
  CheckDlgButton(window(), ID_FIXED_PREVIEW, bLivePreview ? BST_UNCHECKED : BST_CHECKED);
  SetWindowPos(window(), nullptr, placement.x, placement.y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
  showTooltips(window());
  scroll_.attach(window());
  if (moveIntoWorkArea()) {
    scroll_.makeRoomForBar();
    moveIntoWorkArea();  // the bar makes the dialog wider
  }
  ReadLastUsedSettings(view_.filter().parameters);
}

void ParameterDialog::onScaled(Extent from, Extent to, bool bySystem) {
  if (!bySystem) scaleControls(window(), from, to);
  scroll_.scale(from.height, to.height);
}

void ParameterDialog::onDestroy() {
  if (const auto place = windowPlace(window())) {
    WriteParameterPlacement({place->normal.left, place->normal.top, presets().path(),
                             preview_.showsHandle(), bLivePreview});
  }
  onWindowDestroyed();
}

// The dropped-down list is as wide as the whole row, because preset names may be long.
WPARAM ParameterDialog::droppedPresetsWidth() const {
  return static_cast<WPARAM>(controlRect(window(), ID_DELETE_PRESET).right -
                             controlRect(window(), ID_PRESETS).left);
}

void ParameterDialog::onLabel(int id, int notification) {
  if (notification == STN_DBLCLK) {
    editing_.ResetParameter(id);
  } else {
    editing_.deactivatePipette();
  }
}

bool ParameterDialog::takeStep(const MSG& message) {
  const HWND edit = message.hwnd;
  const bool isWheel = message.message == WM_MOUSEWHEEL;
  if (!isWheel && message.message != WM_KEYDOWN) return false;
  if (GetParent(edit) != window() || !isEdit(edit)) return false;
  int steps = 0;
  bool isNewStep = true;
  if (isWheel) {
    steps = wheel_.turn(GET_WHEEL_DELTA_WPARAM(message.wParam));
  } else {
    constexpr std::pair<WPARAM, int> keys[] = {
        {VK_UP, 1}, {VK_DOWN, -1}, {VK_PRIOR, 10}, {VK_NEXT, -10}};
    for (const auto& [key, count] : keys) {
      if (message.wParam == key) steps = count;
    }
    if (steps == 0) return false;
    isNewStep = isFirstPress(message.lParam);
  }
  if (steps == 0) return true;
  editing_.OnStep(GetDlgCtrlID(edit), steps, isNewStep);
  SendMessageA(edit, EM_SETSEL, 0, -1);
  return true;
}

void ParameterDialog::onCommand(int id, int notification) {
  const bool clicked = notification == BN_CLICKED;
  switch (id) {
    case IDOK:
      if (!clicked) return;
      trace("UIProcedure - WM_COMMAND OK pressed.");
      interfaceEnd().request(true);
      return;
    case IDCANCEL:
      if (!clicked) return;
      trace("UIProcedure - WM_COMMAND CANCEL pressed.");
      interfaceEnd().request(false);
      return;
    case ID_PRESETS:
      if (notification != CBN_SELCHANGE) return;
      presets().OnSelectSetting();
      view_.filter().parameters.UpdateAllWidgets();
      view_.RequestRender();
      return;
    case ID_SAVE_PRESET:
      presets().OnSaveSetting();
      return;
    case ID_DELETE_PRESET:
      presets().OnDeleteSetting();
      view_.UpdateUndoButtons();
      return;
    case ID_OPEN_PRESETS:
      presets().OnChangeSettingFile();
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
    case ID_SPLIT:
      view_.showSplit(IsDlgButtonChecked(window(), ID_SPLIT) == BST_CHECKED);
      return;
    case ID_RESET:
      editing_.Reset();
      return;
    case ID_FIXED_PREVIEW:
      bLivePreview = !bLivePreview;
      return;
    case ID_HIDE_HANDLE:
      preview_.showHandle(!preview_.showsHandle());
      return;
    default:
      break;
  }
  if (notification == EN_KILLFOCUS) {
    editing_.OnEditKillFocus(id);
  } else if (clicked || notification == CBN_SELCHANGE || notification == EN_CHANGE) {
    if (clicked) editing_.OpenColorChooser(id);
    editing_.OnControlChange(id, true);
  }
}

void ParameterDialog::PaintSwatch(const DRAWITEMSTRUCT& item) {
  for (const ParameterEditing::Swatch& swatch : editing_.swatches()) {
    if (swatch.id != static_cast<int>(item.CtlID)) continue;
    RECT rect = item.rcItem;
    FrameRect(item.hDC, &rect, colors().frame());
    InflateRect(&rect, -1, -1);
    const HBRUSH brush = CreateSolidBrush(RGB(swatch.color[0], swatch.color[1], swatch.color[2]));
    FillRect(item.hDC, &rect, brush);
    DeleteObject(brush);
    if ((item.itemState & ODS_FOCUS) == 0 || (item.itemState & ODS_NOFOCUSRECT) != 0) continue;
    InflateRect(&rect, -2, -2);
    DrawFocusRect(item.hDC, &rect);
  }
}

void ParameterDialog::setPercentage(const std::string& text) {
  SetDlgItemTextA(window(), ID_PERCENTAGE, text.c_str());
}

void ParameterDialog::enableHistory(bool undo, bool redo) {
  enableControl(window(), ID_UNDO, undo);
  enableControl(window(), ID_REDO, redo);
}

}  // namespace radiashafts
