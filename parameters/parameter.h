// The base class of the effect's parameters.
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
// Not thread-safe: only the host's thread uses it.
class pfParameter {
 public:
  using OnChange = void (*)(pfParameter* parameter, void* context);

  pfParameter() = default;
  virtual ~pfParameter() = default;
  pfParameter(const pfParameter&) = delete;
  pfParameter& operator=(const pfParameter&) = delete;

  virtual void Validate() = 0;  // clamps the value to its limits
  virtual void WriteScript(hostapi::FilterRecord* record, hostapi::Token token) = 0;
  // Reads the value at token when key is one of this parameter's keys; on a read error of the host
  // the value stays unchanged.
  virtual void ReadScript(hostapi::FilterRecord* record, std::uint32_t key,
                          hostapi::Token token) = 0;
  virtual std::int32_t ScriptKeyCount() const = 0;  // counts keys other than 0
  // Writes the keys other than 0, ScriptKeyCount of them, in order.
  virtual void FillScriptKeys(std::uint32_t* keys) const = 0;
  // An undo record of the current value; null when out of memory.
  virtual std::unique_ptr<pfUndo> CreateUndo() = 0;
  // Adds a random number between -0.5 and 0.5 times amount times the range.
  virtual void Randomize(double amount) = 0;

  void NotifyWidget() {
    if (widget != nullptr) widget->Update();
  }
  void SetName(std::string text) { name_ = std::move(text); }
  const std::string& GetName() const { return name_; }

  pfParameterUI* widget = nullptr;  // not owned
  OnChange onChange = nullptr;
  void* onChangeContext = nullptr;
  bool storedInPreset = true;  // in preset files and remembered settings
  bool updatesPreview = true;  // a change requests a preview render and is recorded for undo
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

// Reflects t at 0 and n until it lies between them, n excluded; n is positive.
double ReflectInto(double t, std::int32_t n);

// A random number from -0.5 to 0.5, from std::rand.
double randomStep();

}  // namespace radiashafts
