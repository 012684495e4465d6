// The ordered collection of parameters, and its meeting with the host's scripts and with preset
// files.
#pragma once

#include <string>
#include <vector>

#include "hostapi/filter_record.h"
#include "parameters/parameter.h"

namespace radiashafts {

class PresetTokens;
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

  // Preset files. Paths are in the system's narrow text; white space in a setting's name counts as
  // "_". A change replaces the file in one step or, with a line in the log, leaves it as it was.

  // Whether the file is the filter's or is still to be made. Else, where it is another filter's,
  // the name becomes that one's.
  bool IsSettingFileValid(const std::string& strPath, std::string& strFilterName);
  // Appends the names in the file's order. The result is the file's validity.
  bool GetSettingNames(const std::string& strPath, std::vector<std::string>& lstNames,
                       const std::string& strFilterName);
  // Sets the entry of the name to the present values, a new one behind all others. True when there
  // are names and the file is valid, even if it could not be written: failure then says why.
  bool SaveSettings(const std::string& strName, const std::string& strPath,
                    const std::string& strFilterName, std::string* failure = nullptr);
  // Takes the values of the entry as one step of the history, where there is one, and validates.
  // Parameters that the entry does not name keep theirs. False when there is no such entry.
  bool LoadSettings(const std::string& strName, const std::string& strPath, UndoHistory* history);
  // False when there is no such entry or nothing can be written beside the file.
  bool DeleteSettings(const std::string& strName, const std::string& strPath);

 private:
  bool SaveEntry(const std::string& name, const std::string& path, const std::string& filterName,
                 std::string* failure);
  void LoadEntry(PresetTokens& tokens, UndoHistory* history);
  std::vector<std::uint32_t> ScriptKeys() const;  // ended by a 0

  std::vector<pfParameter*> parameters_;
};

// Whether the host's descriptors can be read and written. The write table's entries are not
// inspected.
bool IsDescriptorUsable(const hostapi::PIDescriptorParameters* descriptorParameters);

// Releases a handle through the host's procs where they are fit, else through the system.
void DisposeDescriptorHandle(const hostapi::HandleProcs* handleProcs, hostapi::Handle handle);

}  // namespace radiashafts
