// Undo and redo of parameter changes.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <utility>

#include "parameters/parameter.h"
#include "parameters/scalar_parameters.h"
#include "parameters/vector_parameters.h"

namespace radiashafts {

// Stores one parameter's value. Apply swaps it with the parameter's current value, so that one
// record serves both undo and redo.
class pfUndo {
 public:
  virtual ~pfUndo() = default;
  virtual void Apply() = 0;
};

template <class Parameter>
class UndoParameter final : public pfUndo {
 public:
  explicit UndoParameter(Parameter& parameter)
      : parameter_(&parameter), stored_(parameter.value()) {}

  void Apply() override {
    const typename Parameter::Value current = parameter_->value();
    parameter_->Restore(stored_);
    stored_ = current;
    // A position's widget is updated by Restore only when the value changed; all others are always
    // updated.
    if constexpr (!std::is_same_v<Parameter, pfParameterPosition>) parameter_->NotifyWidget();
  }

  // Null when out of memory.
  static std::unique_ptr<pfUndo> Create(Parameter& parameter) {
    return std::unique_ptr<pfUndo>(new (std::nothrow) UndoParameter(parameter));
  }

 private:
  Parameter* parameter_;
  typename Parameter::Value stored_;
};

using pfUndoParameterPosition = UndoParameter<pfParameterPosition>;
using pfUndoParameterBool = UndoParameter<pfParameterBool>;
using pfUndoParameterInt = UndoParameter<pfParameterInt>;
using pfUndoParameterFloat = UndoParameter<pfParameterFloat>;
using pfUndoParameterList = UndoParameter<pfParameterList>;
using pfUndoParameterRGB = UndoParameter<pfParameterRGB>;

// A ring buffer of records. Records with the same group number are one step; the caller ends a
// group by incrementing nGroup. Record numbers only grow; record n is in slot n modulo capacity.
class UndoHistory {
 public:
  static constexpr std::int32_t capacity = 500;  // records, not groups

  // Adds the record unless the history is disabled or the record is null. When the buffer is full
  // the whole oldest group is dropped.
  void Push(std::unique_ptr<pfUndo> record);
  // Adds a record that is a step by itself.
  void PushStep(std::unique_ptr<pfUndo> record) {
    Push(std::move(record));
    ++nGroup;
  }

  bool Undo();  // returns whether any record was applied
  bool Redo();

  bool CanUndo() const { return nCurrent > nOldest; }
  bool CanRedo() const { return nCurrent <= nNewest; }

  std::int32_t nOldest = 0;   // number of the oldest record kept
  std::int32_t nNewest = -1;  // number of the newest record
  std::int32_t nCurrent = 0;  // number of the next record
  std::int32_t nGroup = 0;    // group of new records
  bool bEnabled = false;      // set when the interface opens

 private:
  struct Slot {
    std::unique_ptr<pfUndo> record;
    std::int32_t group = -1;
  };
  Slot& slotOf(std::int32_t number) { return slots_[static_cast<std::size_t>(number % capacity)]; }

  std::array<Slot, capacity> slots_;
};

}  // namespace radiashafts
