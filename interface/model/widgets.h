// Widgets bind parameters to controls of the dialog: values to controls, and back on a change.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "interface/model/control_panel.h"
#include "parameters/effect_parameters.h"
#include "parameters/parameter_ui.h"

namespace radiashafts {

// The base of all widgets. It does nothing while no panel is there.
class pfParameterUIControls : public pfParameterUI {
 public:
  explicit pfParameterUIControls(std::array<int, 2> ids) : ids_(ids) {}

  // Binds the controls of an open dialog, sets them up and shows the value; null lets go of them.
  void Open(ControlPanel* controls) {
    panel = controls;
    if (panel != nullptr) Init();
  }
  // Takes the state of the focused control. True when the preview needs a new render.
  virtual bool OnChange() { return false; }
  // An edit has lost the focus.
  virtual void OnKillFocus(int) {}

  bool OwnsControl(int id) const { return id == ids_[0] || (ids_[1] != 0 && id == ids_[1]); }
  int firstId() const { return ids_[0]; }

  bool visible = true;

 protected:
  virtual void Init() { Update(); }
  int secondId() const { return ids_[1]; }
  void UpdateState();  // enabled and visible, of all its controls
  // The dialog reports a text that is set like one that is typed, and in the middle of an Update,
  // whatever has the focus. showing tells such a report.
  void ShowText(int id, const std::string& text);

  ControlPanel* panel = nullptr;
  bool showing = false;

 private:
  std::array<int, 2> ids_;
};

// An edit and a slider in hundredths.
class pfParameterUIFloat final : public pfParameterUIControls {
 public:
  using pfParameterUIControls::pfParameterUIControls;
  void Update() override;
  bool OnChange() override;
  void OnKillFocus(int id) override;

 private:
  pfParameterFloat& bound() const { return static_cast<pfParameterFloat&>(*parameter); }
  void Init() override;
  bool TakeEdit();
  bool TakeSlider();
};

// Two edits that show pixels of the whole image.
class pfParameterUIPosition final : public pfParameterUIControls {
 public:
  using pfParameterUIControls::pfParameterUIControls;
  void Update() override;
  bool OnChange() override;

 private:
  pfParameterPosition& bound() const { return static_cast<pfParameterPosition&>(*parameter); }
};

// A check box, or a push button whose work is its parameter's onChange.
class pfParameterUIBool final : public pfParameterUIControls {
 public:
  using pfParameterUIControls::pfParameterUIControls;
  void Update() override;
  bool OnChange() override;

 private:
  pfParameterBool& bound() const { return static_cast<pfParameterBool&>(*parameter); }
};

// A combo box.
class pfParameterUIList final : public pfParameterUIControls {
 public:
  using pfParameterUIControls::pfParameterUIControls;
  void Update() override;
  bool OnChange() override;

 private:
  pfParameterList& bound() const { return static_cast<pfParameterList&>(*parameter); }
};

// A swatch that the dialog paints in the place of a hidden control.
class pfParameterUIRGB final : public pfParameterUIControls {
 public:
  using pfParameterUIControls::pfParameterUIControls;
  void Update() override;
  pfParameterRGB& bound() const { return static_cast<pfParameterRGB&>(*parameter); }

 private:
  void Init() override {}
};

using WidgetList = std::vector<std::unique_ptr<pfParameterUIControls>>;

// One widget for each parameter, attached to it, in the dialog's order.
WidgetList makeWidgets(EffectParameters& effect);

// The widget that owns the control; null for none.
pfParameterUIControls* FindWidgetByControl(int id, const WidgetList& widgets);

}  // namespace radiashafts
