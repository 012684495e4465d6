#pragma once

namespace radiashafts {

class pfParameter;

// The widget of a parameter, as far as the parameter uses it.
class pfParameterUI {
 public:
  virtual ~pfParameterUI() = default;

  // Shows the parameter's value in the controls.
  virtual void Update() {}

  // Disabled controls show the value but accept no input.
  bool enabled = true;
  pfParameter* parameter = nullptr;  // not owned, see AttachWidget
};

}  // namespace radiashafts
