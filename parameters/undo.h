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

// Remembers one parameter's value. Applying it swaps that value with the parameter's, so that one
// record serves both directions.
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
    const typename Parameter::Value present = parameter_->value();
    parameter_->Restore(stored_);
    stored_ = present;
    // A position's widget has been told where it changed; all others are told in any case.
    if constexpr (!std::is_same_v<Parameter, pfParameterPosition>) parameter_->NotifyWidget();
  }

  // Null when memory is out.
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

// A ring of records. Records with one group number make one step; a caller closes a group by adding
// 1 to nGroup. Sequence numbers only grow: number n lives in slot n modulo capacity.
class UndoHistory {
 public:
  static constexpr std::int32_t capacity = 500;  // records, not groups

  // Keeps the record when the history is enabled and the record is not null. A full ring forgets
  // its oldest group whole.
  void Push(std::unique_ptr<pfUndo> record);
  // A record that is a step by itself.
  void PushStep(std::unique_ptr<pfUndo> record) {
    Push(std::move(record));
    ++nGroup;
  }

  bool Undo();  // whether any record was applied
  bool Redo();

  bool CanUndo() const { return nCurrent > nOldest; }
  bool CanRedo() const { return nCurrent <= nNewest; }

  std::int32_t nOldest = 0;   // the oldest live record
  std::int32_t nNewest = -1;  // the newest record that redo may reach
  std::int32_t nCurrent = 0;  // the number that the next record takes
  std::int32_t nGroup = 0;    // the group of new records
  bool bEnabled = false;      // off until the interface stands

 private:
  struct Slot {
    std::unique_ptr<pfUndo> record;
    std::int32_t group = -1;
  };
  Slot& slotOf(std::int32_t number) { return slots_[static_cast<std::size_t>(number % capacity)]; }

  std::array<Slot, capacity> slots_;
};

}  // namespace radiashafts
