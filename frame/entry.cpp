// The exported function. It lets one call in at a time, sets the default floating-point state and
// lets no exception out.

#include <atomic>
#include <cstdint>

#include "diagnostics/debug_log.h"
#include "frame/pf_filter_radiashafts.h"
#include "platform/export.h"
#include "platform/floating_point.h"
#include "threads/thread_pool.h"

namespace radiashafts {
namespace {

// Whether a call is in progress. There is one filter object, so a second call meanwhile, on the
// same thread or another, is rejected.
std::atomic<bool> running{false};

// Constructed on the first call and kept until the module is unloaded, so that a run starts with
// the values of the one before.
pfFilterRadiashafts& gPlugin() {
  DebugLog::Instance();  // these two are constructed first, so they are destroyed last
  ThreadPool::Instance();
  static pfFilterRadiashafts plugin;
  return plugin;
}

// Exceptions come from failed allocations, hence the status.
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

// Only the low 8 bits of the selector are used, sign-extended; 256 acts as 0. data, where the host
// keeps a pointer for the plug-in, is not used.
extern "C" RADIASHAFTS_EXPORT void ENTRYPOINT(std::int16_t selector, void* pluginParamBlock,
                                              std::intptr_t* /*data*/, std::int16_t* result) {
  using namespace radiashafts;
  if (result == nullptr) return;
  *result = -1;
  if (pluginParamBlock == nullptr) return;
  *result = hostapi::userCanceledError;
  if (running.exchange(true)) return;
  const platform::DefaultFloatingPoint floatingPoint;
  *result = runSelector(static_cast<std::int8_t>(selector), pluginParamBlock);
  running = false;
}
