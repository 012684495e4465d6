#include "resources/parameter_dialog.h"

#include <algorithm>
#include <sstream>
#include <string_view>

#include "interface/win32/dialog_ids.h"
#include "parameters/effect_table.h"

namespace radiashafts::resources {
namespace {

// All sizes are in dialog units. Labels, sliders and edit fields each have a column.
constexpr int dialogWidth = 177;
constexpr int dialogHeight = 354;
constexpr int margin = 4;
constexpr int inset = 6;  // between a group box and its contents
constexpr int left = margin + inset;
constexpr int right = dialogWidth - margin - inset;
constexpr int controlLeft = 51;  // right of the labels
constexpr int editWidth = 34;
constexpr int editHeight = 12;
constexpr int swatchWidth = 34;
constexpr int sliderHeight = 11;
constexpr int labelHeight = 8;
constexpr int labelOffset = 2;  // centres a label vertically next to an edit field
constexpr int rowPitch = 13;
constexpr int dropDownHeight = 140;
constexpr int gap = 3;

const ParameterFacts& factsOf(std::string_view name) {
  return *std::find_if(effectTable.begin(), effectTable.end(),
                       [name](const ParameterFacts& facts) { return facts.name == name; });
}

class Layout {
 public:
  std::string text() const { return out_.str(); }
  int y = 0;

  void control(const char* text, int id, const char* windowClass, const char* style, int x, int top,
               int width, int height) {
    out_ << "  CONTROL \"" << text << "\", " << id << ", \"" << windowClass << "\", " << style
         << ", " << x << ", " << top << ", " << width << ", " << height << '\n';
  }
  // A label tells when it is clicked twice.
  void label(const char* text, int x, int width, const char* alignment = "SS_LEFT") {
    const std::string style = std::string(alignment) + " | SS_NOTIFY";
    control(text, -1, "STATIC", style.c_str(), x, y + labelOffset, width, labelHeight);
  }
  // The next control's name for screen readers, which read the text before it, hidden or not.
  void nameNext(const char* text) {
    control(text, -1, "STATIC", "SS_LEFT | NOT WS_VISIBLE", 0, y, 0, 0);
  }
  void button(const char* text, int id, int x, int width, int height = rowPitch,
              const char* style = "BS_PUSHBUTTON | WS_TABSTOP") {
    control(text, id, "BUTTON", style, x, y, width, height);
  }
  void checkBox(const char* text, int id, int x, int width) {
    control(text, id, "BUTTON", "BS_AUTOCHECKBOX | WS_TABSTOP", x, y, width, 10);
  }
  void combo(int id, int x, int width, const char* sorting = "") {
    const std::string style = std::string("CBS_DROPDOWNLIST | WS_VSCROLL | WS_TABSTOP") + sorting;
    control("", id, "COMBOBOX", style.c_str(), x, y, width, dropDownHeight);
  }
  void edit(int id, int x, int width) {
    control("", id, "EDIT", "ES_AUTOHSCROLL | WS_BORDER | WS_TABSTOP", x, y, width, editHeight);
  }
  // Drawn by the dialog; its text is a name for screen readers.
  void swatch(const ParameterFacts& facts, int x) {
    control(facts.labels[0], facts.controls[0], "BUTTON", "BS_OWNERDRAW | WS_TABSTOP", x, y,
            swatchWidth, editHeight);
  }
  // In the middle column. The track is inset in the control, so that its left end is at
  // controlLeft.
  void slider(int id) {
    constexpr int trackInset = 4;
    control("", id, "msctls_trackbar32", "TBS_NOTICKS | TBS_BOTH | WS_TABSTOP",
            controlLeft - trackInset, y + 1, right - editWidth - controlLeft + trackInset - 1,
            sliderHeight);
  }

  // One row: label, slider and edit field.
  void numberRow(const char* name) {
    const ParameterFacts& facts = factsOf(name);
    label(facts.labels[0], left, controlLeft - left);
    slider(facts.controls[1]);
    nameNext(facts.labels[0]);
    edit(facts.controls[0], right - editWidth, editWidth);
    y += rowPitch;
  }
  void numberRows(std::initializer_list<const char*> names) {
    for (const char* name : names) numberRow(name);
  }

  // Adds a group box of this height; y moves to the first row inside it.
  void beginGroup(const char* text, int height) {
    control(text, -1, "BUTTON", "BS_GROUPBOX", margin, y, dialogWidth - 2 * margin, height);
    y += 9;
  }

 private:
  std::ostringstream out_;
};

void presetRow(Layout& layout) {
  constexpr int width = 26;
  layout.y = margin;
  layout.nameNext("preset");
  layout.combo(ID_PRESETS, margin, dialogWidth - 2 * margin - 3 * (width + 2), " | CBS_SORT");
  int x = dialogWidth - margin - 3 * width - 4;
  for (const auto& [text, id] :
       {std::pair{"open...", ID_OPEN_PRESETS}, std::pair{"save...", ID_SAVE_PRESET},
        std::pair{"delete", ID_DELETE_PRESET}}) {
    layout.button(text, id, x, width);
    x += width + 2;
  }
}

void mainOptions(Layout& layout) {
  layout.y = 20;
  layout.beginGroup("main options", 106);
  layout.numberRows({"Intensity", "RayLength", "Radius", "GammaCorrection", "Contrast"});

  const ParameterFacts& origin = factsOf("Origin");
  layout.label(origin.labels[0], left, controlLeft - left);
  layout.edit(origin.controls[0], controlLeft, editWidth);
  layout.label(origin.labels[1], right - editWidth - gap - 40, 40, "SS_RIGHT");
  layout.edit(origin.controls[1], right - editWidth, editWidth);
  layout.y += rowPitch + 1;

  constexpr int modeLeft = left + 20;
  constexpr int modeWidth = 46;
  constexpr int blendLeft = modeLeft + modeWidth + gap + 20;
  layout.label("mode", left, 20);
  layout.combo(factsOf("Mode").controls[0], modeLeft, modeWidth);
  layout.label("blend", blendLeft - 20, 20);
  layout.combo(factsOf("BlendMode").controls[0], blendLeft, right - blendLeft);
}

void alterColor(Layout& layout) {
  layout.y = 128;
  layout.beginGroup("alter color", 90);
  layout.numberRows({"Hue", "Saturation", "Lightness", "ColorBalance"});
  const ParameterFacts& imageColor = factsOf("UseImageColor");
  layout.checkBox(imageColor.labels[0], imageColor.controls[0], left, right - left);
  layout.y += 12;  // keeps the swatches above the group box's bottom border

  const ParameterFacts& low = factsOf("ColorLow");
  const ParameterFacts& high = factsOf("ColorHigh");
  layout.label(low.labels[0], left, controlLeft - gap - left);
  layout.swatch(low, controlLeft);
  layout.label(high.labels[0], right - swatchWidth - gap - 40, 40, "SS_RIGHT");
  layout.swatch(high, right - swatchWidth);
}

void selection(Layout& layout) {
  layout.y = 220;
  layout.beginGroup("selection", 78);
  layout.numberRows({"SelectionLow", "SelectionHigh", "SelectionSoften", "SelectionClimax"});
  layout.y += 1;
  const ParameterFacts& show = factsOf("SelectionShow");
  layout.label(show.labels[0], left, controlLeft - left);
  layout.combo(show.controls[0], controlLeft, right - controlLeft);
}

void actions(Layout& layout) {
  const ParameterFacts& amount = factsOf("Randomize");
  const ParameterFacts& random = factsOf("Randomize Button");
  constexpr int width = 42;
  layout.y = 301;
  layout.button(random.labels[0], random.controls[0], margin, width);
  layout.nameNext("amount");
  layout.slider(amount.controls[1]);
  layout.nameNext("amount");
  layout.edit(amount.controls[0], right - editWidth, editWidth);

  layout.y = 316;
  int x = margin;
  for (const auto& [text, id] :
       {std::pair{"undo", ID_UNDO}, std::pair{"redo", ID_REDO}, std::pair{"reset", ID_RESET}}) {
    layout.button(text, id, x, 27);
    x += 29;
  }
  layout.button("|", ID_SPLIT, x, 12, rowPitch, "BS_AUTOCHECKBOX | BS_PUSHLIKE | WS_TABSTOP");
  constexpr int zoomLeft = dialogWidth - margin - 68;
  layout.button("-", ID_ZOOM_OUT, zoomLeft, 16);
  layout.control("", ID_PERCENTAGE, "STATIC", "SS_CENTER", zoomLeft + 17,
                 layout.y + labelOffset + 1, 34, labelHeight);
  layout.button("+", ID_ZOOM_IN, zoomLeft + 52, 16);

  layout.y = 331;
  layout.checkBox("fixed preview", ID_FIXED_PREVIEW, margin + 2, 76);
  layout.y = 341;
  layout.checkBox("hide handle", ID_HIDE_HANDLE, margin + 2, 76);
  layout.y = 335;
  layout.button("OK", 1, dialogWidth - margin - 2 * 42 - 3, 42, 15,
                "BS_DEFPUSHBUTTON | WS_TABSTOP");
  layout.button("Cancel", 2, dialogWidth - margin - 42, 42, 15);
}

}  // namespace

std::string makeParameterDialog() {
  Layout layout;
  presetRow(layout);
  mainOptions(layout);
  alterColor(layout);
  selection(layout);
  actions(layout);
  std::ostringstream script;
  script << ID_PARAMETER_DIALOG << " DIALOGEX 0, 0, " << dialogWidth << ", " << dialogHeight
         << "\nSTYLE DS_MODALFRAME | DS_SETFONT | WS_POPUP | WS_CAPTION | WS_SYSMENU\n"
         << "CAPTION \"Radiashafts  V1.22 ~ halvorsund.example\"\n"
         << "FONT 8, \"MS Sans Serif\"\nBEGIN\n"
         << layout.text() << "END\n";
  return script.str();
}

}  // namespace radiashafts::resources
