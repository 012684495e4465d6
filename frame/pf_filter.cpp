#include "frame/pf_filter.h"

#include <mutex>

#include "diagnostics/debug_log.h"
#include "hostapi/constants.h"
#include "interface/model/live_preview.h"
#include "platform/host_call.h"
#include "platform/pump.h"
#include "platform/tick.h"

namespace radiashafts {

using platform::callHost;

pfFilter::pfFilter(FilterIdentity identity)
    : HalvorsundHost(std::move(identity)), preview(MakePreview()) {}

// RAII: the suites are acquired for one selector; they and kept blocks are released at its end,
// also after an exception.
class pfFilter::SelectorGuard {
 public:
  SelectorGuard(HostMemory& memory, hostapi::SPBasicSuite* basicSuite) : memory_(memory) {
    memory_.acquireSuites(basicSuite);
  }
  ~SelectorGuard() {
    nRenderStartTick = 0;
    memory_.releaseKeptBlocks();
    memory_.releaseSuites();
  }
  SelectorGuard(const SelectorGuard&) = delete;
  SelectorGuard& operator=(const SelectorGuard&) = delete;

 private:
  HostMemory& memory_;
};

std::int16_t pfFilter::Dispatch(std::int8_t selector, void* block) {
  auto* const record = static_cast<hostapi::FilterRecord*>(block);
  const SelectorGuard guard(memory, selector == hostapi::selectorAbout
                                        ? static_cast<hostapi::AboutRecord*>(block)->sSPBasic
                                        : record->sSPBasic);
  currentRecord = record;
  return RunSelector(selector, block);
}

std::int16_t pfFilter::RunSelector(std::int8_t selector, void* block) {
  auto* const record = static_cast<hostapi::FilterRecord*>(block);
  switch (selector) {
    case hostapi::selectorAbout:
      return DoAboutSelector(static_cast<hostapi::AboutRecord*>(block));
    case hostapi::selectorParameters:
      return DoParametersSelector(record);
    case hostapi::selectorPrepare:
      return DoPrepareSelector(record);
    case hostapi::selectorStart:
      return DoStartSelector(record);
    case hostapi::selectorContinue:
      return DoContinueSelector(record);
    case hostapi::selectorFinish:
      return DoFinishSelector(record);
    default:
      return -1;
  }
}

std::int32_t pfFilter::Progress(std::int32_t done, std::int32_t total, std::int32_t threadIndex) {
  const std::lock_guard lock(memoryLock);
  if (nRenderStartTick != 0) return PumpMessages(threadIndex);
  return threadIndex == 0 ? ReportToHost(done, total) : NoErrorCode();
}

std::int32_t pfFilter::ReportToHost(std::int32_t done, std::int32_t total) {
  callHost(currentRecord->progressProc, done, total);
  const bool aborted =
      currentRecord->abortProc != nullptr && callHost(currentRecord->abortProc) != 0;
  return aborted ? hostapi::userCanceledError : NoErrorCode();
}

// Pumping costs more than rendering a row of a preview, so the host's thread pumps at most every
// 2 ms. Workers own no windows and never pump.
std::int32_t pfFilter::PumpMessages(std::int32_t threadIndex) {
  constexpr std::uint32_t minimumRenderTime = 201;  // milliseconds
  constexpr std::chrono::milliseconds pumpInterval(2);
  const auto now = std::chrono::steady_clock::now();
  if (threadIndex == 0 && now - lastPump >= pumpInterval) {
    const bool quit = !callHost(platform::pumpPendingMessages);  // may run the host's procedures
    lastPump = std::chrono::steady_clock::now();
    if (quit) quitRenderTick = nRenderStartTick;
  }
  if (bInterfaceEnded || quitRenderTick == nRenderStartTick) return -1;  // on every thread
  const bool superseded = bRenderPending && bLivePreview &&
                          platform::tickCount() - nRenderStartTick >= minimumRenderTime;
  return superseded ? hostapi::userCanceledError : NoErrorCode();
}

void* pfFilter::Allocate(std::uint32_t size) {
  const std::lock_guard lock(memoryLock);
  return memory.allocate(size, nRenderStartTick != 0);
}

void pfFilter::Free(void* pointer) {
  const std::lock_guard lock(memoryLock);
  memory.free(pointer, nRenderStartTick != 0);
}

}  // namespace radiashafts
