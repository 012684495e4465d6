#include "interface/model/parameter_editing.h"

#include <algorithm>
#include <cmath>

#include "image/color.h"
#include "image/unit_scale.h"
#include "interface/model/chosen_color.h"
#include "interface/model/live_preview.h"

namespace radiashafts {

void ParameterEditing::open(WidgetList* widgets, ControlPanel* panel) {
  widgets_ = widgets;
  scrolledSlider_ = 0;
  for (const auto& widget : *widgets_) widget->Open(panel);
}

void ParameterEditing::close() {
  deactivatePipette();
  if (widgets_ == nullptr) return;
  for (const auto& widget : *widgets_) widget->Open(nullptr);
  widgets_ = nullptr;
}

pfParameterUIControls* ParameterEditing::FindWidget(int id) const {
  return widgets_ == nullptr ? nullptr : FindWidgetByControl(id, *widgets_);
}

bool ParameterEditing::OnControlChange(int id, bool withUndo) {
  pfParameterUIControls* widget = FindWidget(id);
  return widget != nullptr && change(*widget, withUndo, [&] { return widget->OnChange(id); });
}

// The change returns whether a render is needed, and so does this.
template <class Change>
bool ParameterEditing::change(pfParameterUIControls& widget, bool withUndo, const Change& change) {
  std::unique_ptr<pfUndo> before;
  if (withUndo && widget.parameter->updatesPreview) before = widget.parameter->CreateUndo();
  if (!change()) return false;
  view_.RequestRender();
  if (before != nullptr) {
    view_.filter().undoHistory.PushStep(std::move(before));
    view_.UpdateUndoButtons();
  }
  return true;
}

void ParameterEditing::OnScroll(int id, bool atRest) {
  const bool first = scrolledSlider_ != id;
  const bool changed = OnControlChange(id, first);
  scrolledSlider_ = atRest || (first && !changed) ? 0 : id;
}

void ParameterEditing::OnStep(int id, int steps, bool isNewStep) {
  pfParameterUIControls* widget = FindWidget(id);
  if (widget != nullptr) change(*widget, isNewStep, [&] { return widget->OnStep(id, steps); });
}

void ParameterEditing::OnEditKillFocus(int id) {
  pfParameterUIControls* widget = FindWidget(id);
  if (widget != nullptr) widget->OnKillFocus(id);
}

void ParameterEditing::ResetParameter(int id) {
  pfParameterUIControls* widget = FindWidget(id);
  const ParameterFacts* facts = FindFactsByControl(id);
  if (widget == nullptr || facts == nullptr) return;
  pfParameter& parameter = *widget->parameter;
  change(*widget, true, [&] {
    const ParameterNumbers before = NumbersOf(parameter);
    SetNumbers(parameter, facts->defaults);
    widget->Refresh();
    return parameter.updatesPreview && NumbersOf(parameter) != before;
  });
}

void ParameterEditing::Undo() {
  if (view_.filter().undoHistory.Undo()) showRestored();
  view_.UpdateUndoButtons();
}

void ParameterEditing::showRestored() {
  if (widgets_ != nullptr) {
    for (const auto& widget : *widgets_) widget->Refresh();
  }
  view_.RequestRender();
}

void ParameterEditing::Redo() {
  if (view_.filter().undoHistory.Redo()) showRestored();
  view_.UpdateUndoButtons();
}

void ParameterEditing::Reset() {
  view_.filter().ResetParameters(true);
  view_.UpdateUndoButtons();
  view_.RequestRender();
}

void ParameterEditing::record(pfParameter& parameter) {
  view_.filter().undoHistory.PushStep(parameter.CreateUndo());
  view_.UpdateUndoButtons();
}

pfParameterRGB* ParameterEditing::FindSwatchParameter(int id) const {
  const auto* swatch = dynamic_cast<const pfParameterUIRGB*>(FindWidget(id));
  return swatch == nullptr ? nullptr : &swatch->bound();
}

// The undo step is recorded even when the chosen colour is the old one.
void ParameterEditing::OpenColorChooser(int id) {
  pfParameterRGB* parameter = FindSwatchParameter(id);
  if (parameter == nullptr) return;
  deactivatePipette();
  auto [red, green, blue] = parameter->value();
  windows_.enableDialogs(false);
  const bool chosen = view_.filter().RequestColor(&view_.record(), &red, &green, &blue);
  windows_.enableDialogs(true);
  if (!chosen) return;
  record(*parameter);
  const bool renderNeeded = parameter->SetValue(red, green, blue);
  parameter->NotifyWidget();
  if (renderNeeded) view_.RequestRender();
}

void ParameterEditing::ActivatePipette(int id) {
  pipetteTarget_ = FindSwatchParameter(id);
  if (pipetteTarget_ != nullptr) record(*pipetteTarget_);
  windows_.usePipetteCursor(pipetteTarget_ != nullptr);
}

void ParameterEditing::applyPipetteColor(const std::array<std::uint8_t, 3>& color) {
  const bool renderNeeded =
      pipetteTarget_->SetValue(color[0] * byteToUnit, color[1] * byteToUnit, color[2] * byteToUnit);
  if (renderNeeded) view_.RequestRender();
}

void ParameterEditing::deactivatePipette() {
  pipetteTarget_ = nullptr;
  windows_.usePipetteCursor(false);
}

pfParameterPosition* ParameterEditing::FindOriginParameter() const {
  pfParameterPosition* found = nullptr;
  if (widgets_ == nullptr) return found;
  for (const auto& widget : *widgets_) {
    auto* position = dynamic_cast<pfParameterPosition*>(widget->parameter);
    if (position != nullptr) found = position;
  }
  return found;
}

std::vector<ParameterEditing::Swatch> ParameterEditing::swatches() {
  std::vector<Swatch> swatches;
  if (widgets_ == nullptr) return swatches;
  for (const auto& widget : *widgets_) {
    const auto* swatch = dynamic_cast<const pfParameterUIRGB*>(widget.get());
    if (swatch == nullptr || !swatch->visible) continue;
    const auto& [red, green, blue] = swatch->bound().value();
    if (choosesGrey(view_.record().imageMode) && !(red == green && green == blue)) {
      const double grey = luminance<3>(swatch->bound().value().data());
      // A NaN never compares equal, so setting it would request repaints without end.
      if (std::isfinite(grey)) swatch->bound().SetValue(grey, grey, grey);
    }
    Swatch& shown = swatches.emplace_back(Swatch{swatch->firstId(), {}});
    for (std::size_t i = 0; i < 3; ++i) {
      shown.color[i] = std::clamp(wholePixels(swatch->bound().value()[i] * 255.0), 0, 255);
    }
  }
  return swatches;
}

}  // namespace radiashafts
