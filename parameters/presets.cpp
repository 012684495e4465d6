// Reads and writes preset files.

#include <algorithm>
#include <limits>

#include "diagnostics/debug_log.h"
#include "parameters/parameters.h"
#include "parameters/preset_file.h"
#include "parameters/undo.h"
#include "parameters/visit_parameter.h"
#include "platform/whole_file.h"

namespace radiashafts {
namespace {

using platform::FileState;
using platform::lineEnd;
using platform::ReplaceFailure;
using platform::ReplaceStep;
using platform::WholeFile;

void warnNotReadable(const std::string& path) {
  logLine(severityWarning, warningMarker, "Could not open file for reading: '", path, "'");
}

void warnNotWritten(const std::string& path, const ReplaceFailure& failure) {
  if (failure.step == ReplaceStep::open) {
    logLine(severityWarning, warningMarker, "Could not open file for writing: '", path, "'");
  } else {
    logLine(severityWarning, warningMarker, "Could not write file: '", path,
            "', it stays as it was: ", failure.reason);
  }
}

// Whether the file belongs to the filter, or may: it does not exist or cannot be read. When another
// filter owns it, filterName receives that filter's name.
bool belongsToFilter(const WholeFile& file, std::string& filterName) {
  if (file.state != FileState::whole) return file.state != FileState::unfit;
  const auto owner = presetOwner(file.content);
  if (!owner) return false;
  if (equalsIgnoringCase(*owner, filterName)) return true;
  filterName = *owner;
  return false;
}

// Reads the file and returns whether it is valid; an empty path is not.
bool readAndValidate(const std::string& path, std::string& filterName, WholeFile& file) {
  trace("pfParmeters::IsSettingFileValid( strPath(", path, "), strFilterName(", filterName, ") )");
  const LogIndent indent;
  file = path.empty() ? WholeFile{FileState::unfit, {}} : platform::readWholeFile(path);
  const bool valid = belongsToFilter(file, filterName);
  trace("pfParmeters::IsSettingFileValid( return(", valid, ") )");
  return valid;
}

// The content without the entry; none when there is no such entry or no header.
std::optional<std::string> withoutEntry(const WholeFile& file, const std::string& name) {
  const auto entry = findPreset(file.content, name);
  if (!entry || !presetOwner(file.content)) return std::nullopt;
  return withoutPreset(file.content, *entry, lineEnd);
}

// False when there is no such entry any more or no temporary file can be created next to the file.
bool deleteEntry(const std::string& name, const std::string& path) {
  bool found = false;
  const auto failed = platform::changeWholeFile(path, [&](const WholeFile& old) {
    auto content = withoutEntry(old, name);
    found = content.has_value();
    return content;
  });
  if (failed) warnNotWritten(path, *failed);
  return found;
}

// Rounds to single precision; clamps values that are out of its range.
double toSinglePrecision(double value) {
  constexpr double largest = std::numeric_limits<float>::max();
  return static_cast<float>(std::clamp(value, -largest, largest));
}

std::string valueLine(pfParameter& parameter) {
  std::string line = parameter.GetName();
  const auto put = [&line](const std::string& value) { line += " " + value; };
  const auto putAll = [&put](const auto& vector) {
    for (const double value : vector.value()) put(presetNumber(value));
  };
  visitParameter(parameter,
                 ParameterVisitor{[&](const pfParameterPosition& position) { putAll(position); },
                                  [&](const pfParameterRGB& color) { putAll(color); },
                                  [&](const pfParameterFloat& number) {
                                    put(presetNumber(toSinglePrecision(number.value())));
                                  },
                                  [&](const auto& whole) {
                                    put(std::to_string(static_cast<int>(whole.value())));
                                  }});
  return line + lineEnd;
}

// Sets the parameter from the token and, when it has more values, from the tokens after it. Returns
// whether the preview needs a new render.
bool loadValue(pfParameter& parameter, std::string_view token, PresetTokens& tokens) {
  bool needsRender = false;
  const auto loadAll = [&](auto& vector) {
    auto values = vector.value();
    values[0] = numberAt(token);
    for (std::size_t i = 1; i < values.size(); ++i) {
      if (const auto further = tokens.next()) values[i] = numberAt(further->text);
    }
    needsRender = values != vector.value() && parameter.updatesPreview;
    vector.Restore(values);
  };
  visitParameter(
      parameter,
      ParameterVisitor{
          [&](pfParameterPosition& position) { loadAll(position); },
          [&](pfParameterRGB& color) { loadAll(color); },
          [&](pfParameterFloat& number) { needsRender = number.SetValue(numberAt(token)); },
          [&](pfParameterBool& flag) { needsRender = flag.SetValue(integerAt(token) != 0); },
          [&](pfParameterInt& whole) { needsRender = whole.SetValue(integerAt(token)); },
          [&](pfParameterList& list) {
            const std::int32_t entry = integerAt(token);
            if (entry >= 1) needsRender = list.SetValue(entry);
          }});
  return needsRender;
}

}  // namespace

bool pfParameters::IsSettingFileValid(const std::string& strPath, std::string& strFilterName) {
  WholeFile file;
  return readAndValidate(strPath, strFilterName, file);
}

bool pfParameters::GetSettingNames(const std::string& strPath, std::vector<std::string>& lstNames,
                                   const std::string& strFilterName) {
  trace("pfParmeters::GetSettingNames( strPath(", strPath, "), lstNames(), strFilterName(",
        strFilterName, ") )");
  const LogIndent indent;
  std::string owner = strFilterName;
  WholeFile file;
  const bool valid = readAndValidate(strPath, owner, file);
  if (valid) {
    for (std::string& name : presetNames(file.content)) lstNames.push_back(std::move(name));
  }
  trace("pfParmeters::GetSettingNames( return(", valid, ") )");
  return valid;
}

bool pfParameters::SaveSettings(const std::string& strName, const std::string& strPath,
                                const std::string& strFilterName, std::string* failure) {
  trace("pfParmeters::SaveSettings( strName(", strName, "), strPath(", strPath, ") )");
  const LogIndent indent;
  const std::string name = presetNameOf(strName);
  std::string owner = strFilterName;
  bool valid = false;
  if (!name.empty() && !strPath.empty()) {
    WholeFile old;
    valid =
        readAndValidate(strPath, owner, old) && SaveEntry(name, strPath, strFilterName, failure);
  }
  trace("pfParmeters::SaveSettings( return(", valid, ") )");
  return valid;
}

bool pfParameters::LoadSettings(const std::string& strName, const std::string& strPath,
                                UndoHistory* history) {
  trace("pfParmeters::LoadSettings( strName(", strName, "), strPath(", strPath, "), pFilter(",
        static_cast<void*>(history), ") )");
  const LogIndent indent;
  bool loaded = false;
  const std::string name = presetNameOf(strName);
  if (!name.empty() && !strPath.empty()) {
    const WholeFile file = platform::readWholeFile(strPath);
    if (file.state != FileState::whole) warnNotReadable(strPath);
    if (const auto entry = findPreset(file.content, name)) {
      PresetTokens tokens(file.content, entry->nameEnd);
      LoadEntry(tokens, history);
      loaded = true;
    }
  }
  trace("pfParmeters::LoadSettings( return(", loaded, ") )");
  return loaded;
}

bool pfParameters::DeleteSettings(const std::string& strName, const std::string& strPath) {
  trace("pfParmeters::DeleteSettings( strName(", strName, "), strPath(", strPath, ") )");
  const LogIndent indent;
  bool found = false;
  const std::string name = presetNameOf(strName);
  if (!name.empty() && !strPath.empty()) {
    const WholeFile file = platform::readWholeFile(strPath);
    if (file.state != FileState::whole) warnNotReadable(strPath);
    found = withoutEntry(file, name) && deleteEntry(name, strPath);
  }
  trace("pfParmeters::DeleteSettings( return(", found, ") )");
  return found;
}

bool pfParameters::SaveEntry(const std::string& name, const std::string& path,
                             const std::string& filterName, std::string* failure) {
  std::string values;
  for (pfParameter* parameter : parameters_) {
    if (parameter->storedInPreset) values += valueLine(*parameter);
  }
  bool valid = true;
  bool read = true;
  const auto failed =
      platform::changeWholeFile(path, [&](const WholeFile& old) -> std::optional<std::string> {
        std::string owner = filterName;
        valid = belongsToFilter(old, owner);
        read = old.state != FileState::refused;
        if (!valid || !read) return std::nullopt;
        const bool isNew = old.state == FileState::absent;
        const std::string header = std::string(presetOwnerKeyword) + " " + filterName + lineEnd;
        return withPreset(isNew ? header : old.content, name, values, lineEnd);
      });
  if (failed) warnNotWritten(path, *failed);
  if (!read) warnNotReadable(path);
  if (failure != nullptr && failed) *failure = failed->reason;
  if (failure != nullptr && !read) *failure = "cannot be read";
  return valid;
}

void pfParameters::LoadEntry(PresetTokens& tokens, UndoHistory* history) {
  while (const auto key = tokens.next()) {
    if (endsPreset(key->text)) break;
    const auto value = tokens.next();
    if (!value) break;
    for (pfParameter* parameter : parameters_) {
      if (!parameter->storedInPreset || !equalsIgnoringCase(key->text, parameter->GetName())) {
        continue;
      }
      std::unique_ptr<pfUndo> record = history != nullptr ? parameter->CreateUndo() : nullptr;
      if (loadValue(*parameter, value->text, tokens)) {
        if (history != nullptr) history->Push(std::move(record));
      }
    }
  }
  if (history != nullptr) ++history->nGroup;
  ValidateAll();
}

}  // namespace radiashafts
