// Widgets bind parameters to dialog controls: they show values and apply the user's changes.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "interface/model/control_panel.h"
#include "parameters/effect_parameters.h"
#include "parameters/parameter_ui.h"

namespace radiashafts {

// The base class of the widgets. Without a panel, that is without an open dialog, it does nothing.
class pfParameterUIControls : public pfParameterUI {
 public:
  explicit pfParameterUIControls(std::array<int, 2> ids) : ids_(ids) {}

  // Binds the controls of an open dialog, sets them up and shows the value; null unbinds them.
  void Open(ControlPanel* controls) {
    panel = controls;
    if (panel != nullptr) Init();
  }
  // Shows the value in all controls, also in one that the user works with.
  void Refresh() {
    source_ = anySource;
    Update();
    source_ = 0;
  }
  // Sets the parameter from one of its controls. Returns whether the preview needs a new render.
  virtual bool OnChange(int) { return false; }
  // Moves the number in an edit by steps. Returns as OnChange does.
  virtual bool OnStep(int, int) { return false; }
  // An edit has lost the focus.
  virtual void OnKillFocus(int) {}

  bool OwnsControl(int id) const { return id == ids_[0] || (ids_[1] != 0 && id == ids_[1]); }
  int firstId() const { return ids_[0]; }

  bool visible = true;

 protected:
  virtual void Init() { Update(); }
  int secondId() const { return ids_[1]; }
  void UpdateState();  // enables or disables, shows or hides all its controls
  // Sets an edit's text. The dialog reports this as a change, as if the user had typed; settingText
  // is true meanwhile, so that OnChange can ignore it.
  void ShowText(int id, const std::string& text);

  // Whether a control is to show the value. One that the user works with is left alone, unless
  // another one is the source of the change.
  bool shows(int id) const { return !panel->hasFocus(id) || (source_ != 0 && source_ != id); }

  ControlPanel* panel = nullptr;
  bool settingText = false;
  int source_ = 0;  // the control whose change is being applied; 0 for none

 private:
  static constexpr int anySource = -1;
  std::array<int, 2> ids_;
};

// An edit and a slider in hundredths.
class pfParameterUIFloat final : public pfParameterUIControls {
 public:
  using pfParameterUIControls::pfParameterUIControls;
  void Update() override;
  bool OnChange(int id) override;
  bool OnStep(int id, int steps) override;
  void OnKillFocus(int id) override;

 private:
  pfParameterFloat& bound() const { return static_cast<pfParameterFloat&>(*parameter); }
  void Init() override;
  bool TakeEdit();
  bool TakeSlider();
  bool TakeNumber(double number);
};

// Two edits that show pixels of the whole image.
class pfParameterUIPosition final : public pfParameterUIControls {
 public:
  using pfParameterUIControls::pfParameterUIControls;
  void Update() override;
  bool OnChange(int id) override;
  bool OnStep(int id, int steps) override;
  void OnKillFocus(int id) override;

 private:
  pfParameterPosition& bound() const { return static_cast<pfParameterPosition&>(*parameter); }
};

// A check box, or a push button that runs its parameter's onChange.
class pfParameterUIBool final : public pfParameterUIControls {
 public:
  using pfParameterUIControls::pfParameterUIControls;
  void Update() override;
  bool OnChange(int id) override;

 private:
  pfParameterBool& bound() const { return static_cast<pfParameterBool&>(*parameter); }
};

// A combo box.
class pfParameterUIList final : public pfParameterUIControls {
 public:
  using pfParameterUIControls::pfParameterUIControls;
  void Update() override;
  bool OnChange(int id) override;

 private:
  pfParameterList& bound() const { return static_cast<pfParameterList&>(*parameter); }
};

// A colour swatch, a button that the dialog draws.
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

// The row of the parameter that has the control; null for none.
const ParameterFacts* FindFactsByControl(int id);

// The widget that owns the control; null for none.
pfParameterUIControls* FindWidgetByControl(int id, const WidgetList& widgets);

}  // namespace radiashafts
