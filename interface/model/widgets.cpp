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
  const std::optional<double> number = parseNumber(panel->text(firstId()));
  return number && TakeNumber(*number);
}

bool pfParameterUIFloat::TakeNumber(double number) {
  if (bound().useMinimum) number = std::max(number, bound().minimum);
  if (bound().useMaximum) number = std::min(number, bound().maximum);
  const bool renderNeeded = bound().SetValue(number);
  bound().Validate();
  return renderNeeded;
}

// Whole numbers where the range has many, else hundredths as those of the slider.
bool pfParameterUIFloat::OnStep(int id, int steps) {
  if (panel == nullptr || id != firstId()) return false;
  const double stepsPerUnit = bound().maximum - bound().minimum > 10.0 ? 1.0 : sliderSteps;
  const double number = std::round(bound().value() * stepsPerUnit) + steps;
  const bool renderNeeded = TakeNumber(number / stepsPerUnit);
  Refresh();
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

// Whole pixels. The text is set, too, because the value may be a little less than they are.
bool pfParameterUIPosition::OnStep(int id, int steps) {
  const bool isX = id == firstId();
  if (panel == nullptr) return false;
  const int side = isX ? panel->imageSize().width : panel->imageSize().height;
  if (side <= 0) return false;
  const double value = isX ? bound().x() : bound().y();
  const int pixels = wholePixels(std::round(value * side)) + steps;
  const double stepped = static_cast<double>(pixels) / side;
  ShowText(id, std::to_string(pixels));
  return isX ? bound().SetValue(stepped, bound().y()) : bound().SetValue(bound().x(), stepped);
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

const ParameterFacts* FindFactsByControl(int id) {
  const auto owner =
      std::find_if(effectTable.begin(), effectTable.end(), [id](const ParameterFacts& facts) {
        return id != 0 && (id == facts.controls[0] || id == facts.controls[1]);
      });
  return owner == effectTable.end() ? nullptr : &*owner;
}

pfParameterUIControls* FindWidgetByControl(int id, const WidgetList& widgets) {
  const auto owner = std::find_if(widgets.begin(), widgets.end(),
                                  [id](const auto& widget) { return widget->OwnsControl(id); });
  return owner == widgets.end() ? nullptr : owner->get();
}

}  // namespace radiashafts
