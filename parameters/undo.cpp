#include "parameters/undo.h"

namespace radiashafts {

void UndoHistory::Push(std::unique_ptr<pfUndo> record) {
  if (record == nullptr || !bEnabled) return;
  if (nOldest <= nCurrent - capacity) {
    const std::int32_t oldestGroup = slotOf(nOldest).group;
    while (nOldest < nCurrent && slotOf(nOldest).group == oldestGroup) ++nOldest;
  }
  slotOf(nCurrent) = {std::move(record), nGroup};
  nNewest = nCurrent++;
}

bool UndoHistory::Undo() {
  if (!CanUndo()) return false;
  const std::int32_t group = slotOf(nCurrent - 1).group;
  while (CanUndo() && slotOf(nCurrent - 1).group == group) {
    --nCurrent;
    if (const auto& record = slotOf(nCurrent).record) record->Apply();
  }
  return true;
}

bool UndoHistory::Redo() {
  if (!CanRedo()) return false;
  const std::int32_t group = slotOf(nCurrent).group;
  while (CanRedo() && slotOf(nCurrent).group == group) {
    if (const auto& record = slotOf(nCurrent).record) record->Apply();
    ++nCurrent;
  }
  return true;
}

}  // namespace radiashafts
