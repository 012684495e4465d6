// The interface's windows and a filter to edit, without a screen.
#pragma once

#include <cstdlib>
#include <functional>
#include <map>
#include <new>
#include <string>

#include "hostapi/constants.h"
#include "interface/model/control_panel.h"
#include "interface/model/dialog_windows.h"
#include "interface/model/edited_filter.h"
#include "interface/model/live_preview.h"
#include "interface/model/preview.h"
#include "interface/model/preview_view.h"

namespace radiashafts::test {

// Controls that hold what they were last told. As in a real dialog, a text that is set says so.
struct FakePanel final : ControlPanel {
  Extent imageSize() const override { return image; }
  bool hasFocus(int id) const override { return id == focus; }
  void enable(int, bool) override {}
  void show(int, bool) override {}
  void invalidate(int) override {}
  std::string text(int id) const override { return texts.contains(id) ? texts.at(id) : ""; }
  void setText(int id, const std::string& text) override {
    texts[id] = text;
    if (textChanged) textChanged(id);
  }
  void setSliderRange(int id, int minimum, int maximum, int page) override {
    texts[id] =
        std::to_string(minimum) + ".." + std::to_string(maximum) + "/" + std::to_string(page);
  }
  int sliderPosition(int id) const override { return numbers.at(id); }
  void setSliderPosition(int id, int position, bool) override { numbers[id] = position; }
  bool isIndeterminate(int id) const override { return numbers.at(id) == 2; }
  bool isChecked(int id) const override { return numbers.at(id) == 1; }
  void setChecked(int id, bool checked) override { numbers[id] = checked ? 1 : 0; }
  int selectedEntry(int id) const override { return numbers.at(id); }
  void setEntries(int id, const std::vector<std::string>& entries, int selected) override {
    numbers[id] = selected;
    texts[id] = entries.empty() ? "" : entries.front() + ".." + entries.back();
  }

  Extent image{400, 300};
  int focus = 0;
  std::map<int, std::string> texts;  // of a slider its range and page
  std::map<int, int> numbers;        // positions, check states and selections
  std::function<void(int)> textChanged;
};

struct FakeWindows final : DialogWindows {
  Extent frameSize() const override { return frame; }
  int dotsPerInch() const override { return dots; }
  void invalidateFrame() override {}
  void paintNow() override {
    if (paint) paint();
  }
  void setPercentage(const std::string& text) override { percentage = text; }
  void setCaption(const std::string& text) override { caption = text; }
  void enableHistory(bool undo, bool redo) override {
    buttons = std::string(undo ? "undo" : "") + (redo ? "redo" : "");
  }
  void captureMouse() override { captured = true; }
  void releaseMouse() override { captured = false; }
  void usePipetteCursor(bool on) override { pipette = on; }
  std::optional<std::array<std::uint8_t, 3>> screenColor(Point) override { return onScreen; }
  void enableDialogs(bool on) override { dialogs = on; }

  Extent frame{200, 150};
  int dots = 96;
  std::function<void()> paint;
  std::string percentage, caption, buttons;
  bool captured = false, pipette = false, dialogs = true;
  std::optional<std::array<std::uint8_t, 3>> onScreen;
};

// A user who zooms by each of the steps, looks at the picture, and confirms or cancels.
struct LookingPreview final : pfPreview {
  LookingPreview(std::vector<int> zoomSteps, std::function<bool()> confirmed)
      : steps(std::move(zoomSteps)), confirms(std::move(confirmed)) {}
  bool Show(EditedFilter* filter, hostapi::FilterRecord* record, WidgetList*) override {
    struct Opening {
      PreviewView& view;
      ~Opening() { view.close(); }
    } const opening{view};
    view.open(filter, record);
    view.FitScaleToFrame();
    for (const int step : steps) {
      view.ZoomBy(step);
      view.RequestRender();
      view.RenderUntilFinal();
    }
    return confirms();
  }
  void RequestRender() override { view.RequestRender(); }
  bool AlternativeColorSelection(hostapi::FilterRecord*, double*, double*, double*) override {
    return false;
  }

  std::vector<int> steps;
  std::function<bool()> confirms;
  FakeWindows windows;
  PreviewView view{windows};
};

// A host and a filter in one. It notes "S2 " for a picture fetched at the factor 2 and "R1 " for a
// render with the draft level 1. The renders play a script of letters:
//   .  a picture             p  a picture, and a change came meanwhile
//   x  a change cuts it short    e  a failure    m  no memory    - zooms out as p
// An F there stands for a fetch that fails, in its turn among the renders; past the end all is
// well.
struct FakeFilter final : EditedFilter {
  explicit FakeFilter(std::string renders = "") : script(std::move(renders)) {
    record.imageSize = {300, 400};
    record.imageMode = hostapi::modeRGB;
    record.planes = 3;
    record.outData = row.data();  // of every row
  }
  std::int16_t SelectRenderTemplate(hostapi::FilterRecord*) override {
    log += "R" + std::to_string(previewLevel) + " ";
    const char move = next();
    if (move == 'x' || move == 'p' || move == '-') bRenderPending = true;
    if (move == '-') zoomOut();
    if (move == 'm') throw std::bad_alloc();
    return move == 'x' ? hostapi::userCanceledError : move == 'e' ? -30 : 0;
  }
  std::int16_t SetupFilterRecord(hostapi::FilterRecord* asked, std::uint32_t factor) override {
    log += "S" + std::to_string(factor) + " ";
    const auto reduced = [factor](int side) { return static_cast<std::int16_t>(side / factor); };
    asked->outRect = {0, 0, reduced(asked->imageSize.v), reduced(asked->imageSize.h)};
    asked->inRect = asked->outRect;
    if (script.empty() || script.front() != 'F') return 0;
    next();
    return -30;
  }
  void ResetParameters(bool) override {}
  const char* GetFilterName() const override { return "fake"; }
  bool RequestColor(hostapi::FilterRecord*, double*, double*, double*) override { return false; }
  void* Allocate(std::uint32_t size) override {
    ++live;
    return std::malloc(size);
  }
  void Free(void* pointer) override {
    --live;
    std::free(pointer);
  }
  char next() {
    const char move = script.empty() ? '.' : script.front();
    if (!script.empty()) script.erase(0, 1);
    return move;
  }
  std::string takeLog() { return std::exchange(log, ""); }

  std::string script, log;
  std::function<void()> zoomOut;
  int live = 0;
  std::vector<std::uint8_t> row = std::vector<std::uint8_t>(3 * 400);
  hostapi::FilterRecord record{};
};

}  // namespace radiashafts::test
