// The one function that the module exports, and what holds for every call of it: one at a time, in
// the default floating-point state, and no exception gets out.

#include <atomic>
#include <cstdint>

#include "diagnostics/debug_log.h"
#include "frame/pf_filter_radiashafts.h"
#include "platform/export.h"
#include "platform/floating_point.h"
#include "threads/thread_pool.h"

namespace radiashafts {
namespace {

// Whether a call is inside. There is one filter with one set of values, so a host that comes back
// meanwhile, on whatever thread, is refused.
std::atomic<bool> running{false};

// Built at the first call and kept until the process ends: a second run starts from the values that
// the last one left.
pfFilterRadiashafts& gPlugin() {
  DebugLog::Instance();  // these stand before the plug-in and outlive it
  ThreadPool::Instance();
  static pfFilterRadiashafts plugin;
  return plugin;
}

// What is thrown is memory that the system or the host does not have.
std::int16_t runSelector(std::int8_t selector, void* block) noexcept {
  try {
    return gPlugin().Dispatch(selector, block);
  } catch (...) {
    logLine(severityError, errorMarker, "an exception ended the selector");
    if (selector == hostapi::selectorStart) {
      emptyRectangles(*static_cast<hostapi::FilterRecord*>(block));
    }
    return hostapi::memoryFullError;
  }
}

}  // namespace
}  // namespace radiashafts

// Only the low 8 bits of the selector count, sign-extended; 256 acts as 0. data is the host's place
// for the plug-in's state and is not used.
extern "C" RADIASHAFTS_EXPORT void ENTRYPOINT(std::int16_t selector, void* pluginParamBlock,
                                              std::intptr_t* /*data*/, std::int16_t* result) {
  using namespace radiashafts;
  if (result == nullptr) return;
  *result = -1;
  if (pluginParamBlock == nullptr) return;
  *result = hostapi::userCanceledError;
  if (running.exchange(true)) return;
  const platform::DefaultFloatingPoint ours;
  *result = runSelector(static_cast<std::int8_t>(selector), pluginParamBlock);
  running = false;
}
