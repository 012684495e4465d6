#include "interface/model/widgets.h"

#include <algorithm>
#include <cmath>

#include "parameters/number_text.h"

namespace radiashafts {
namespace {

constexpr double sliderSteps = 100.0;  // slider positions per unit of the value

int sliderPosition(double value) {
  return wholePixels(std::round(value * sliderSteps));
}

}  // namespace

void pfParameterUIControls::UpdateState() {
  for (const int id : ids_) {
    if (id == 0) continue;
    panel->enable(id, enabled);
    panel->show(id, visible);
    panel->invalidate(id);
  }
}

void pfParameterUIControls::ShowText(int id, const std::string& text) {
  settingText = true;
  panel->setText(id, text);
  settingText = false;
}

void pfParameterUIFloat::Init() {
  const double range = std::abs(bound().maximum - bound().minimum);
  panel->setSliderRange(secondId(), sliderPosition(bound().minimum),
                        sliderPosition(bound().maximum),
                        std::max(static_cast<int>(range * sliderSteps / 10.0), 1));
  Update();
}

// The slider is moved to other positions first, because the system does not repaint the thumb when
// the position stays the same.
void pfParameterUIFloat::Update() {
  if (panel == nullptr) return;
  const double value = bound().value();
  if (shows(secondId())) {
    panel->setSliderPosition(secondId(), sliderPosition(value + 1.0), false);
    panel->setSliderPosition(secondId(), sliderPosition(value), true);
    panel->setSliderPosition(secondId(), sliderPosition(value - 1.0), false);
    panel->setSliderPosition(secondId(), sliderPosition(value), true);
  }
  if (shows(firstId())) ShowText(firstId(), numberText(value));
  UpdateState();
}

bool pfParameterUIFloat::OnChange(int id) {
  if (panel == nullptr || settingText) return false;
  source_ = id;
  const bool renderNeeded = id == firstId() ? TakeEdit() : TakeSlider();
  source_ = 0;
  return renderNeeded;
}

bool pfParameterUIFloat::TakeEdit() {
  std::optional<double> number = parseNumber(panel->text(firstId()));
  if (!number) return false;
  if (bound().useMinimum) number = std::max(*number, bound().minimum);
  if (bound().useMaximum) number = std::min(*number, bound().maximum);
  const bool renderNeeded = bound().SetValue(*number);
  bound().Validate();
  return renderNeeded;
}

bool pfParameterUIFloat::TakeSlider() {
  const bool renderNeeded = bound().SetValue(panel->sliderPosition(secondId()) * 0.01);
  bound().Validate();
  return renderNeeded;
}

// An unedited text is not applied: it has six digits only and would round the value.
void pfParameterUIFloat::OnKillFocus(int id) {
  if (panel == nullptr || id != firstId()) return;
  if (panel->text(firstId()) != numberText(bound().value())) TakeEdit();
  Update();
}

// A text that already equals the value is left as the user typed it.
void pfParameterUIPosition::Update() {
  if (panel == nullptr) return;
  const Extent image = panel->imageSize();
  const auto updateEdit = [this](int id, int side, double value) {
    const std::optional<double> pixels = parseNumber(panel->text(id));
    if (pixels && *pixels / side == value) return;
    ShowText(id, std::to_string(wholePixels(side * value)));
  };
  updateEdit(firstId(), image.width, bound().x());
  updateEdit(secondId(), image.height, bound().y());
  UpdateState();
}

bool pfParameterUIPosition::OnChange(int changedId) {
  if (panel == nullptr || settingText) return false;
  const Extent image = panel->imageSize();
  const auto editedValue = [&](int id, int side, double value) {
    const std::optional<double> pixels =
        id == changedId ? parseNumber(panel->text(id)) : std::nullopt;
    return pixels && side > 0 ? *pixels / side : value;
  };
  return bound().SetValue(editedValue(firstId(), image.width, bound().x()),
                          editedValue(secondId(), image.height, bound().y()));
}

// A text that is no number gives way to the value.
void pfParameterUIPosition::OnKillFocus(int id) {
  if (panel != nullptr && !parseNumber(panel->text(id))) Update();
}

void pfParameterUIBool::Update() {
  if (panel == nullptr) return;
  panel->setChecked(firstId(), bound().value());
  UpdateState();
}

bool pfParameterUIBool::OnChange(int) {
  if (panel == nullptr || panel->isIndeterminate(firstId())) return false;
  return bound().SetValue(panel->isChecked(firstId()));
}

void pfParameterUIList::Update() {
  if (panel == nullptr) return;
  std::vector<std::string> entries;
  entries.reserve(static_cast<std::size_t>(bound().EntryCount()));
  for (int i = 0; i < bound().EntryCount(); ++i) entries.push_back(bound().GetEntry(i));
  panel->setEntries(firstId(), entries, bound().value() - 1);
  UpdateState();
}

bool pfParameterUIList::OnChange(int) {
  if (panel == nullptr) return false;
  const int entry = panel->selectedEntry(firstId()) + 1;
  return entry >= 1 && entry <= bound().EntryCount() && bound().SetValue(entry);
}

// The control stays hidden; it only defines the swatch's rectangle.
void pfParameterUIRGB::Update() {
  if (panel != nullptr) panel->invalidate(firstId());
}

WidgetList makeWidgets(EffectParameters& effect) {
  const auto make = [](const ParameterFacts& facts) -> std::unique_ptr<pfParameterUIControls> {
    switch (facts.kind) {
      case ParameterKind::position:
        return std::make_unique<pfParameterUIPosition>(facts.controls);
      case ParameterKind::boolean:
        return std::make_unique<pfParameterUIBool>(facts.controls);
      case ParameterKind::color:
        return std::make_unique<pfParameterUIRGB>(facts.controls);
      case ParameterKind::list:
        return std::make_unique<pfParameterUIList>(facts.controls);
      default:
        return std::make_unique<pfParameterUIFloat>(facts.controls);
    }
  };
  WidgetList widgets;
  for (std::size_t i = 0; i < effectTable.size(); ++i) {
    widgets.push_back(make(effectTable[i]));
    AttachWidget(*widgets.back(), *effect.all[i]);
  }
  return widgets;
}

pfParameterUIControls* FindWidgetByControl(int id, const WidgetList& widgets) {
  const auto owner = std::find_if(widgets.begin(), widgets.end(),
                                  [id](const auto& widget) { return widget->OwnsControl(id); });
  return owner == widgets.end() ? nullptr : owner->get();
}

}  // namespace radiashafts
