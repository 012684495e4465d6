#include "parameters/parameters.h"

#include <cstdlib>

#include "parameters/undo.h"
#include "platform/tick.h"

namespace radiashafts {

void pfParameters::ValidateAll() {
  for (pfParameter* parameter : parameters_) parameter->Validate();
}

void pfParameters::UpdateAllWidgets() {
  for (pfParameter* parameter : parameters_) parameter->NotifyWidget();
}

void pfParameters::RandomizeAll(double amount, UndoHistory& history) {
  std::srand(platform::tickCount());
  for (pfParameter* parameter : parameters_) {
    if (!parameter->randomizable) continue;
    history.Push(parameter->CreateUndo());
    parameter->Randomize(amount);
  }
  ++history.nGroup;
}

}  // namespace radiashafts
