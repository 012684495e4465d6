// The base of all parameters of the effect.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "hostapi/filter_record.h"
#include "parameters/parameter_ui.h"

namespace radiashafts {

class pfUndo;

// One setting: a value, its limits, its script keys, the link to its widget and a change callback.
// Touched on the host's thread only.
class pfParameter {
 public:
  using OnChange = void (*)(pfParameter* parameter, void* context);

  pfParameter() = default;
  virtual ~pfParameter() = default;
  pfParameter(const pfParameter&) = delete;
  pfParameter& operator=(const pfParameter&) = delete;

  virtual void Validate() = 0;  // brings the value inside its limits
  virtual void WriteScript(hostapi::FilterRecord* record, hostapi::Token token) = 0;
  // Takes the value at token when key is one of the own; a read that the host refuses keeps it.
  virtual void ReadScript(hostapi::FilterRecord* record, std::uint32_t key,
                          hostapi::Token token) = 0;
  virtual std::int32_t ScriptKeyCount() const = 0;  // keys that are not 0
  // Writes the keys that are not 0 in order, ScriptKeyCount of them.
  virtual void FillScriptKeys(std::uint32_t* keys) const = 0;
  // A record of the present value; null when memory is out.
  virtual std::unique_ptr<pfUndo> CreateUndo() = 0;
  // A random step of up to half of amount times the range to either side.
  virtual void Randomize(double amount) = 0;

  void NotifyWidget() {
    if (widget != nullptr) widget->Update();
  }
  void SetName(std::string text) { name_ = std::move(text); }
  const std::string& GetName() const { return name_; }

  pfParameterUI* widget = nullptr;  // not owned
  OnChange onChange = nullptr;
  void* onChangeContext = nullptr;
  bool storedInPreset = true;  // goes into preset files and remembered settings
  bool updatesPreview = true;  // a change asks for a new preview and makes an undo record
  bool randomizable = true;

 protected:
  void callOnChange() {
    if (onChange != nullptr) onChange(this, onChangeContext);
  }

 private:
  std::string name_;  // the key in preset files
};

inline void AttachWidget(pfParameterUI& widget, pfParameter& parameter) {
  if (widget.parameter == &parameter) return;
  parameter.widget = &widget;
  widget.parameter = &parameter;
}

// Folds a real number into 0 to n as a triangle wave; n is a positive whole number.
double ReflectInto(double t, std::int32_t n);

// A random number from -0.5 to 0.5, of the standard library's generator.
double randomStep();

}  // namespace radiashafts
