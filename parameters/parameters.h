// The ordered collection of parameters. It reads and writes the host's scripts and preset files.
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

  // Sets the values that the host recorded, without clamping. Parameters whose keys are absent stay
  // unchanged. Returns whether the interface is to open.
  bool ReadScriptParams(hostapi::FilterRecord* record);
  // Passes the current values to the host.
  void WriteScriptParams(hostapi::FilterRecord* record);

  // Preset files. Paths are in the system's narrow encoding; white space in a setting's name is
  // replaced by "_". A change replaces the file atomically; on failure the file stays unchanged and
  // the log says so.

  // Whether the file belongs to the filter or does not exist yet. When it belongs to another
  // filter, strFilterName receives that filter's name.
  bool IsSettingFileValid(const std::string& strPath, std::string& strFilterName);
  // Appends the names in the file's order. Returns whether the file is valid.
  bool GetSettingNames(const std::string& strPath, std::vector<std::string>& lstNames,
                       const std::string& strFilterName);
  // Writes the current values to the entry of that name, or to a new entry at the file's end. False
  // when a name or the path is empty or the file is not valid. When the file cannot be written the
  // result is true and failure receives the reason.
  bool SaveSettings(const std::string& strName, const std::string& strPath,
                    const std::string& strFilterName, std::string* failure = nullptr);
  // Sets and validates the values of the entry; parameters that it does not name stay unchanged.
  // When history is not null the change is recorded as one step. False when there is no such entry.
  bool LoadSettings(const std::string& strName, const std::string& strPath, UndoHistory* history);
  // False when there is no such entry or no temporary file can be created next to the file.
  bool DeleteSettings(const std::string& strName, const std::string& strPath);

 private:
  bool SaveEntry(const std::string& name, const std::string& path, const std::string& filterName,
                 std::string* failure);
  void LoadEntry(PresetTokens& tokens, UndoHistory* history);
  std::vector<std::uint32_t> ScriptKeys() const;  // terminated by a 0

  std::vector<pfParameter*> parameters_;
};

// Whether the host's descriptors can be read and written. The function pointers of the write table
// are not checked.
bool IsDescriptorUsable(const hostapi::PIDescriptorParameters* descriptorParameters);

// Frees a handle through the host's procs when they are usable, else through the system.
void DisposeDescriptorHandle(const hostapi::HandleProcs* handleProcs, hostapi::Handle handle);

}  // namespace radiashafts
