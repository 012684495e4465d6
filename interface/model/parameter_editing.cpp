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

bool ParameterEditing::OnControlChange(int id, bool withUndo) {
  pfParameterUIControls* widget =
      widgets_ == nullptr ? nullptr : FindWidgetByControl(id, *widgets_);
  if (widget == nullptr) return false;
  std::unique_ptr<pfUndo> before;
  if (withUndo && widget->parameter->updatesPreview) before = widget->parameter->CreateUndo();
  if (!widget->OnChange(id)) return false;
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

void ParameterEditing::OnEditKillFocus(int id) {
  pfParameterUIControls* widget =
      widgets_ == nullptr ? nullptr : FindWidgetByControl(id, *widgets_);
  if (widget != nullptr) widget->OnKillFocus(id);
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

pfParameterRGB* ParameterEditing::FindSwatchParameter(Point point) const {
  if (widgets_ == nullptr) return nullptr;
  for (const auto& widget : *widgets_) {
    const auto* swatch = dynamic_cast<const pfParameterUIRGB*>(widget.get());
    if (swatch == nullptr) continue;
    const Box box = windows_.controlBox(swatch->firstId());
    const bool inside =
        point.x >= box.left && point.x <= box.right && point.y >= box.top && point.y <= box.bottom;
    if (inside) return &swatch->bound();
  }
  return nullptr;
}

// The undo step is recorded even when the chosen colour is the old one.
void ParameterEditing::OnInterfaceLeftDown(Point point) {
  pfParameterRGB* parameter = FindSwatchParameter(point);
  if (parameter == nullptr) return;
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

void ParameterEditing::OnInterfaceLeftUp() {
  deactivatePipette();
}

void ParameterEditing::OnSwatchRightUp(Point point) {
  pipetteTarget_ = FindSwatchParameter(point);
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
