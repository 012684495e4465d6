#pragma once

namespace radiashafts {

class pfParameter;

// What a parameter knows of the widget that shows it.
class pfParameterUI {
 public:
  virtual ~pfParameterUI() = default;

  // Brings the controls in line with the parameter's value.
  virtual void Update() {}

  // Controls that are not enabled show their value and cannot be operated.
  bool enabled = true;
  pfParameter* parameter = nullptr;  // not owned, see AttachWidget
};

}  // namespace radiashafts
