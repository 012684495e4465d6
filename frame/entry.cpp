// The one function that the module exports.

#include <cstdint>

#include "diagnostics/debug_log.h"
#include "frame/pf_filter_radiashafts.h"
#include "platform/export.h"

namespace {

// Built at the first call and kept until the process ends: a second run starts from the values that
// the last one left.
radiashafts::pfFilterRadiashafts& gPlugin() {
  radiashafts::DebugLog::Instance();  // stands before the plug-in and outlives it
  static radiashafts::pfFilterRadiashafts plugin;
  return plugin;
}

}  // namespace

// Only the low 8 bits of the selector count, sign-extended; 256 acts as 0. data is the host's place
// for the plug-in's state and is not used.
extern "C" RADIASHAFTS_EXPORT void ENTRYPOINT(std::int16_t selector, void* pluginParamBlock,
                                              std::intptr_t* /*data*/, std::int16_t* result) {
  if (result == nullptr) return;
  *result = pluginParamBlock == nullptr
                ? std::int16_t{-1}
                : gPlugin().Dispatch(static_cast<std::int8_t>(selector), pluginParamBlock);
}
