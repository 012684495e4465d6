// The C interface: no exception passes it.
#include "hosts/library/radiashafts-host.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <new>
#include <string>

#include "hosts/library/own_files.h"
#include "hosts/library/preset_source.h"
#include "hosts/library/session.h"
#include "parameters/parameter_text.h"

struct radiashafts_session {
  radiashafts::hosts::Session session;
};

namespace radiashafts::hosts {
namespace {

constexpr std::size_t scriptableCount = static_cast<std::size_t>(
    std::count_if(effectTable.begin(), effectTable.end(),
                  [](const ParameterFacts& facts) { return facts.keys[0].code != nullptr; }));

radiashafts_kind kindOf(ParameterKind kind) {
  switch (kind) {
    case ParameterKind::position:
      return RADIASHAFTS_POSITION;
    case ParameterKind::boolean:
      return RADIASHAFTS_SWITCH;
    case ParameterKind::color:
      return RADIASHAFTS_COLOR;
    case ParameterKind::list:
      return RADIASHAFTS_LIST;
    default:
      return RADIASHAFTS_NUMBER;
  }
}

radiashafts_parameter described(const ParameterFacts& facts) {
  radiashafts_parameter parameter{};
  parameter.name = facts.name;
  parameter.label = facts.kind == ParameterKind::position ? "position" : facts.labels[0];
  parameter.description = facts.help;
  parameter.group = groupOf(facts);
  parameter.kind = kindOf(facts.kind);
  parameter.value_count = valueCount(facts.kind);
  std::copy(facts.defaults.begin(), facts.defaults.end(), parameter.defaults);
  parameter.minimum = facts.minimum;
  parameter.maximum = facts.maximum;
  const bool isNumber = facts.kind == ParameterKind::number;
  parameter.has_open_end = isNumber && facts.bound == Bound::lower ? 1 : 0;
  parameter.entry_count = static_cast<int>(facts.entries.size());
  parameter.entries = facts.entries.data();
  return parameter;
}

using Table = std::array<radiashafts_parameter, scriptableCount>;

// Group by group.
Table makeTable() {
  Table table{};
  std::size_t next = 0;
  for (const char* group : {lightGroup, colorGroup, selectionGroup}) {
    for (const ParameterFacts& facts : effectTable) {
      const bool isScriptable = facts.keys[0].code != nullptr;
      if (isScriptable && groupOf(facts) == group) table[next++] = described(facts);
    }
  }
  return table;
}

const Table& table() {
  static const Table theTable = makeTable();
  return theTable;
}

// Does the work, or keeps the reason why not.
template <class Work>
radiashafts_result guarded(radiashafts_session* session, const Work& work) {
  if (session == nullptr) return RADIASHAFTS_INVALID_ARGUMENT;
  const auto failed = [session](radiashafts_result result, const char* text) {
    try {
      session->session.error = text;
    } catch (const std::bad_alloc&) {
      session->session.error.clear();
    }
    return result;
  };
  try {
    session->session.error.clear();
    work(session->session);
    return RADIASHAFTS_OK;
  } catch (const SessionError& error) {
    return failed(error.result, error.what());
  } catch (const PresetError& error) {
    const bool isThere = error.kind == PresetError::unusable;
    return failed(isThere ? RADIASHAFTS_FAILED : RADIASHAFTS_NOT_FOUND, error.what());
  } catch (const std::bad_alloc&) {
    return failed(RADIASHAFTS_NO_MEMORY, "not enough memory");
  } catch (const std::exception& error) {
    return failed(RADIASHAFTS_FAILED, error.what());
  } catch (...) {
    return failed(RADIASHAFTS_FAILED, "an unknown failure");
  }
}

std::string fileOrShipped(const char* file) {
  return file == nullptr ? ownPresets().string() : file;
}

template <class Pointer>
void require(const Pointer& pointer, const char* text) {
  if (pointer == nullptr) throw SessionError(RADIASHAFTS_INVALID_ARGUMENT, text);
}

}  // namespace
}  // namespace radiashafts::hosts

using namespace radiashafts::hosts;

int radiashafts_interface(void) {
  return RADIASHAFTS_HOST_INTERFACE;
}

int radiashafts_parameter_count(void) {
  return static_cast<int>(table().size());
}

const radiashafts_parameter* radiashafts_parameter_at(int index) {
  if (index < 0 || index >= radiashafts_parameter_count()) return nullptr;
  return &table()[static_cast<std::size_t>(index)];
}

radiashafts_session* radiashafts_open(void) {
  try {
    return new radiashafts_session;
  } catch (...) {
    return nullptr;
  }
}

void radiashafts_close(radiashafts_session* session) {
  delete session;
}

const char* radiashafts_error(const radiashafts_session* session) {
  return session == nullptr ? "the session is null" : session->session.error.c_str();
}

radiashafts_result radiashafts_set(radiashafts_session* session, const char* name,
                                   const double* values) {
  return guarded(session, [&](Session& opened) { opened.set(name, values); });
}

radiashafts_result radiashafts_get(radiashafts_session* session, const char* name, double* values) {
  return guarded(session, [&](Session& opened) { opened.get(name, values); });
}

radiashafts_result radiashafts_reset(radiashafts_session* session) {
  return guarded(session, [](Session& opened) { opened.reset(); });
}

radiashafts_result radiashafts_list_presets(radiashafts_session* session, const char* file,
                                            radiashafts_preset_function preset, void* context) {
  return guarded(session, [&](Session&) {
    require(preset, "there is no function for the presets");
    for (const std::string& name : presetNamesIn(fileOrShipped(file))) {
      const std::string description(file == nullptr ? presetDescription(name) : "");
      preset(context, name.c_str(), description.c_str());
    }
  });
}

radiashafts_result radiashafts_load_preset(radiashafts_session* session, const char* file,
                                           const char* name) {
  return guarded(session, [&](Session& opened) {
    require(name, "the preset's name is null");
    loadPreset(opened.effect(), fileOrShipped(file), name);
  });
}

radiashafts_result radiashafts_save_preset(radiashafts_session* session, const char* file,
                                           const char* name) {
  return guarded(session, [&](Session& opened) {
    require(file, "the preset file's name is null");
    require(name, "the preset's name is null");
    savePreset(opened.effect(), file, name);
  });
}

radiashafts_result radiashafts_render(radiashafts_session* session,
                                      const radiashafts_picture* picture,
                                      const radiashafts_mask* mask,
                                      const radiashafts_picture* result,
                                      radiashafts_progress_function progress, void* context) {
  return guarded(session, [&](Session& opened) {
    require(picture, "the picture is null");
    require(result, "the result is null");
    opened.render(*picture, mask, *result, progress, context);
  });
}

radiashafts_result radiashafts_find_light(radiashafts_session* session,
                                          const radiashafts_picture* picture,
                                          const radiashafts_mask* mask,
                                          radiashafts_progress_function progress, void* context) {
  return guarded(session, [&](Session& opened) {
    require(picture, "the picture is null");
    opened.findLight(*picture, mask, progress, context);
  });
}
