#include "interface/win32/tooltips.h"

#include <algorithm>
#include <string>

#include <commctrl.h>

#include "interface/model/widgets.h"
#include "interface/win32/dialog_controls.h"
#include "interface/win32/dialog_ids.h"
#include "parameters/parameter_text.h"

namespace radiashafts {
namespace {

struct ControlTip {
  int id;
  const char* text;
};
constexpr ControlTip controlTips[] = {
    {ID_PRESETS, "Sets all values to those of a preset."},
    {ID_OPEN_PRESETS, "Opens another file of presets."},
    {ID_SAVE_PRESET, "Saves the values as a preset of this file."},
    {ID_DELETE_PRESET, "Deletes the chosen preset from its file."},
    {ID_UNDO, "Takes back the last change (Ctrl+Z)."},
    {ID_REDO, "Does again what was taken back (Ctrl+Y)."},
    {ID_RESET,
     "Sets all values to their defaults.\n"
     "A double click on a label does it for one value."},
    {ID_ZOOM_OUT, "Shows more of the picture (- in the preview, 0 shows all)."},
    {ID_ZOOM_IN, "Shows the picture larger (+ in the preview, 1 shows its pixels)."},
    {ID_SPLIT, "Compares: the picture as it came is left of a line that can be dragged."},
    {ID_FIXED_PREVIEW, "Finishes each render of the preview before the next one starts."},
    {ID_HIDE_HANDLE, "Hides the mark at the light's place in the preview."},
    {IDOK, "Renders the picture with these values."},
    {IDCANCEL, "Leaves the picture as it is."},
};

// What the parameter does, then its values.
std::string parameterTip(const ParameterFacts& facts) {
  const std::string help = facts.help;
  switch (facts.kind) {
    case ParameterKind::position:
      return help + "\nIn pixels of the picture; default: its middle";
    case ParameterKind::color:
      return help + "\nA click or Space chooses it, a right click picks it from the preview.";
    case ParameterKind::list:
      return help + "\nDefault: " + defaultText(facts);
    case ParameterKind::boolean:
      return facts.storedInPreset ? help + "\nDefault: " + defaultText(facts) : help;
    default:
      return help + "\n" + rangeText(facts) + "; default: " + defaultText(facts);
  }
}

std::string tipFor(int id) {
  if (const ParameterFacts* facts = FindFactsByControl(id)) return parameterTip(*facts);
  const auto* const tip = std::find_if(std::begin(controlTips), std::end(controlTips),
                                       [id](const ControlTip& entry) { return entry.id == id; });
  return tip == std::end(controlTips) ? "" : tip->text;
}

}  // namespace

void showTooltips(HWND dialog) {
  const HWND tips = CreateWindowExA(WS_EX_TOPMOST, TOOLTIPS_CLASSA, nullptr,
                                    WS_POPUP | TTS_ALWAYSTIP | TTS_NOPREFIX, 0, 0, 0, 0, dialog,
                                    nullptr, nullptr, nullptr);
  if (tips == nullptr) return;
  constexpr int widest = 2000;         // pixels; the lines are short
  constexpr int longestShown = 20000;  // milliseconds
  SendMessageA(tips, TTM_SETMAXTIPWIDTH, 0, widest);
  SendMessageA(tips, TTM_SETDELAYTIME, TTDT_AUTOPOP, longestShown);
  for (HWND control = GetWindow(dialog, GW_CHILD); control != nullptr;
       control = GetWindow(control, GW_HWNDNEXT)) {
    const int labelled = labelledControl(control);
    std::string text = tipFor(labelled != 0 ? labelled : GetDlgCtrlID(control));
    if (text.empty()) continue;
    TTTOOLINFOA tool{};
    tool.cbSize = TTTOOLINFOA_V1_SIZE;
    tool.uFlags = TTF_IDISHWND | TTF_SUBCLASS;
    tool.hwnd = dialog;
    tool.uId = reinterpret_cast<UINT_PTR>(control);
    tool.lpszText = text.data();
    SendMessageA(tips, TTM_ADDTOOLA, 0, reinterpret_cast<LPARAM>(&tool));
  }
}

}  // namespace radiashafts
