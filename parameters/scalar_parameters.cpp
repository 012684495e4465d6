#include "parameters/scalar_parameters.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "parameters/script_values.h"
#include "parameters/undo.h"

namespace radiashafts {

bool pfParameterFloat::SetValue(double v) {
  bool needsRender = false;
  if (v != value_) {
    value_ = v;
    NotifyWidget();
    needsRender = updatesPreview;
  }
  callOnChange();
  return needsRender;
}

void pfParameterFloat::Validate() {
  double v = value_;
  if (useMinimum && v < minimum) v = minimum;
  if (useMaximum && maximum < v) v = maximum;
  if (v != value_) {
    value_ = v;
    NotifyWidget();
  }
  callOnChange();
}

void pfParameterFloat::WriteScript(hostapi::FilterRecord* record, hostapi::Token token) {
  writeScriptNumber(*record, token, key, value_);
}

void pfParameterFloat::ReadScript(hostapi::FilterRecord* record, std::uint32_t descriptorKey,
                                  hostapi::Token token) {
  if (!ownsKey(descriptorKey)) return;
  if (const auto v = readScriptNumber(*record, token)) SetValue(*v);
}

std::unique_ptr<pfUndo> pfParameterFloat::CreateUndo() {
  return pfUndoParameterFloat::Create(*this);
}

void pfParameterFloat::Randomize(double amount) {
  if (!randomizable) return;
  const double range = maximum - minimum;
  const double stepped = range * randomStep() * amount + value_ - minimum;
  const double v = minimum + ReflectInto(stepped, static_cast<std::int32_t>(range));
  if (v != value_) {
    value_ = v;
    NotifyWidget();
  }
  callOnChange();
  Validate();
}

void pfParameterFloat::Restore(Value v) {
  SetValue(v);
}

bool pfParameterInt::SetValue(std::int32_t v) {
  if (v == value_) return false;
  value_ = v;
  NotifyWidget();
  return updatesPreview;
}

void pfParameterInt::Validate() {
  std::int32_t v = value_;
  if (useMinimum && v < minimum) v = minimum;
  if (useMaximum && maximum < v) v = maximum;
  SetValue(v);
}

void pfParameterInt::WriteScript(hostapi::FilterRecord* record, hostapi::Token token) {
  writeScriptInteger(*record, token, key, value_);
}

void pfParameterInt::ReadScript(hostapi::FilterRecord* record, std::uint32_t descriptorKey,
                                hostapi::Token token) {
  if (!ownsKey(descriptorKey)) return;
  if (const auto v = readScriptInteger(*record, token)) {
    value_ = *v;
    NotifyWidget();
  }
}

std::unique_ptr<pfUndo> pfParameterInt::CreateUndo() {
  return pfUndoParameterInt::Create(*this);
}

void pfParameterInt::Randomize(double amount) {
  if (!randomizable) return;
  const double range = static_cast<double>(maximum) - minimum;
  const double stepped = range * randomStep() * amount + value_ - minimum;
  const double reflected = ReflectInto(stepped, maximum - minimum) + minimum;
  SetValue(static_cast<std::int32_t>(std::trunc(reflected + 0.5)));
  Validate();
}

void pfParameterInt::Restore(Value v) {
  SetValue(v);
}

bool pfParameterBool::SetValue(bool v) {
  bool needsRender = false;
  if (v != value_) {
    value_ = v;
    NotifyWidget();
    needsRender = updatesPreview;
  }
  callOnChange();
  return needsRender;
}

void pfParameterBool::WriteScript(hostapi::FilterRecord* record, hostapi::Token token) {
  writeScriptFlag(*record, token, key, value_);
}

void pfParameterBool::ReadScript(hostapi::FilterRecord* record, std::uint32_t descriptorKey,
                                 hostapi::Token token) {
  if (!ownsKey(descriptorKey)) return;
  if (const auto v = readScriptFlag(*record, token)) SetValue(*v);
}

std::unique_ptr<pfUndo> pfParameterBool::CreateUndo() {
  return pfUndoParameterBool::Create(*this);
}

void pfParameterBool::Randomize(double) {
  if (!randomizable) return;
  SetValue(std::rand() % 2 == 0);
}

void pfParameterBool::Restore(Value v) {
  SetValue(v);
}

bool pfParameterList::SetValue(std::int32_t v) {
  if (v > EntryCount()) return false;
  bool needsRender = false;
  if (v != value_) {
    value_ = v;
    NotifyWidget();
    needsRender = updatesPreview;
  }
  callOnChange();
  return needsRender;
}

std::string pfParameterList::GetEntry(std::int32_t index) const {
  return index >= 0 && index < EntryCount() ? entries_[static_cast<std::size_t>(index)] : "";
}

void pfParameterList::Validate() {
  const std::int32_t v = std::min(std::max(value_, 1), EntryCount());
  if (!isEntry(v)) return;
  value_ = v;
  NotifyWidget();
  callOnChange();
}

void pfParameterList::WriteScript(hostapi::FilterRecord* record, hostapi::Token token) {
  writeScriptInteger(*record, token, key, value_);
}

void pfParameterList::ReadScript(hostapi::FilterRecord* record, std::uint32_t descriptorKey,
                                 hostapi::Token token) {
  if (!ownsKey(descriptorKey)) return;
  const auto v = readScriptInteger(*record, token);
  if (v && *v > 0) SetValue(*v);
}

std::unique_ptr<pfUndo> pfParameterList::CreateUndo() {
  return pfUndoParameterList::Create(*this);
}

void pfParameterList::Randomize(double amount) {
  if (!randomizable) return;
  // A colour clamps to 2.0 instead. This is intended: the values of a given seed depend on it.
  if (amount > 2.0) amount = 0.0;
  const double stepped = EntryCount() * randomStep() * amount + value_ - 1;
  const double reflected = ReflectInto(stepped, EntryCount()) + 1.0;
  const auto v = static_cast<std::int32_t>(std::trunc(reflected + 0.5));
  if (isEntry(v)) SetValue(v);
  Validate();
}

void pfParameterList::Restore(Value v) {
  if (isEntry(v)) SetValue(v);
}

}  // namespace radiashafts
