// The ordered collection of parameters, and its meeting with the host's scripts.
#pragma once

#include <vector>

#include "hostapi/filter_record.h"
#include "parameters/parameter.h"

namespace radiashafts {

class UndoHistory;

class pfParameters {
 public:
  void Add(pfParameter* parameter) { parameters_.push_back(parameter); }  // not owned
  const std::vector<pfParameter*>& all() const { return parameters_; }

  void ValidateAll();
  void UpdateAllWidgets();
  // A random step of every randomizable parameter, as one step of the history.
  void RandomizeAll(double amount, UndoHistory& history);

  // Takes the values that the host recorded, without limits; parameters whose keys are absent keep
  // theirs. True when the interface is to open.
  bool ReadScriptParams(hostapi::FilterRecord* record);
  // Hands the values to the host as they stand.
  void WriteScriptParams(hostapi::FilterRecord* record);

 private:
  std::vector<std::uint32_t> ScriptKeys() const;  // ended by a 0

  std::vector<pfParameter*> parameters_;
};

// Whether the host's descriptors can be read and written. The write table's entries are not
// inspected.
bool IsDescriptorUsable(const hostapi::PIDescriptorParameters* descriptorParameters);

// Releases a handle through the host's procs where they are fit, else through the system.
void DisposeDescriptorHandle(const hostapi::HandleProcs* handleProcs, hostapi::Handle handle);

}  // namespace radiashafts
