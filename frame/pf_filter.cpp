#include "frame/pf_filter.h"

#include <algorithm>
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

// The length of a selector, also of one that an exception ends.
class pfFilter::SelectorGuard {
 public:
  explicit SelectorGuard(pfFilter& filter) : filter_(filter) { filter_.AcquireSuites(); }
  ~SelectorGuard() {
    nRenderStartTick = 0;
    filter_.ReleaseKeptBlocks();
    filter_.ReleaseSuites();
  }
  SelectorGuard(const SelectorGuard&) = delete;
  SelectorGuard& operator=(const SelectorGuard&) = delete;

 private:
  pfFilter& filter_;
};

std::int16_t pfFilter::Dispatch(std::int8_t selector, void* block) {
  auto* const record = static_cast<hostapi::FilterRecord*>(block);
  basicSuite = selector == hostapi::selectorAbout
                   ? static_cast<hostapi::AboutRecord*>(block)->sSPBasic
                   : record->sSPBasic;
  const SelectorGuard guard(*this);
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

// The Handle Suite keeps its last value where the host writes none.
void pfFilter::AcquireSuites() {
  bufferSuite = nullptr;
  if (basicSuite == nullptr) return;
  const void* suite = nullptr;
  callHost(basicSuite->AcquireSuite, hostapi::bufferSuiteName, hostapi::bufferSuiteVersion, &suite);
  bufferSuite = static_cast<const hostapi::BufferSuite1*>(suite);
  suite = handleSuite;
  callHost(basicSuite->AcquireSuite, hostapi::handleSuiteName, hostapi::handleSuiteVersion, &suite);
  handleSuite = static_cast<const hostapi::HandleSuite2*>(suite);
}

void pfFilter::ReleaseSuites() {
  if (basicSuite == nullptr) return;
  callHost(basicSuite->ReleaseSuite, hostapi::bufferSuiteName, hostapi::bufferSuiteVersion);
  callHost(basicSuite->ReleaseSuite, hostapi::handleSuiteName, hostapi::handleSuiteVersion);
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

// Looking for messages costs more than a row of a preview: the host's thread looks every other
// millisecond, and workers, which have no windows, never.
std::int32_t pfFilter::PumpMessages(std::int32_t threadIndex) {
  constexpr std::uint32_t undisturbed = 201;  // milliseconds that every preview is left
  constexpr std::chrono::milliseconds betweenLooks(2);
  const auto now = std::chrono::steady_clock::now();
  if (threadIndex == 0 && now - lastLook >= betweenLooks) {
    const bool open = callHost(platform::pumpPendingMessages);  // some are the host's
    lastLook = std::chrono::steady_clock::now();
    if (!open) endedRender = nRenderStartTick;
  }
  if (bInterfaceEnded || endedRender == nRenderStartTick) return -1;  // workers learn of it too
  const bool superseded =
      bRenderPending && bLivePreview && platform::tickCount() - nRenderStartTick >= undisturbed;
  return superseded ? hostapi::userCanceledError : NoErrorCode();
}

// A block of the very size, or a new one; then the view has changed, and what was kept is of no
// use.
void* pfFilter::Allocate(std::uint32_t size) {
  const std::lock_guard lock(memoryLock);
  const bool inPreview = nRenderStartTick != 0;
  for (KeptBlock& block : keptBlocks) {
    if (!inPreview || block.pointer == nullptr || block.inUse || block.size != size) continue;
    block.inUse = true;
    return block.pointer;
  }
  ReleaseKeptBlocks();
  void* const pointer = AllocateFromHost(size);
  const auto empty = std::find_if(keptBlocks.begin(), keptBlocks.end(),
                                  [](const KeptBlock& block) { return block.pointer == nullptr; });
  if (inPreview && empty != keptBlocks.end()) *empty = {pointer, size, true};
  return pointer;
}

void pfFilter::Free(void* pointer) {
  const std::lock_guard lock(memoryLock);
  if (pointer == nullptr) return;
  const auto kept = std::find_if(keptBlocks.begin(), keptBlocks.end(),
                                 [&](const KeptBlock& block) { return block.pointer == pointer; });
  if (kept != keptBlocks.end()) {
    kept->inUse = false;
    if (nRenderStartTick != 0) return;
    *kept = {};
  }
  FreeToHost(pointer);
}

void pfFilter::ReleaseKeptBlocks() {
  for (KeptBlock& block : keptBlocks) {
    if (block.pointer == nullptr || block.inUse) continue;
    FreeToHost(block.pointer);
    block = {};
  }
}

void* pfFilter::AllocateFromHost(std::uint32_t size) {
  if (!usesHostMemory()) return HalvorsundHost::Allocate(size);
  std::uint32_t requested = size;
  return callHost(bufferSuite->New, &requested, size);
}

void pfFilter::FreeToHost(void* pointer) {
  if (!usesHostMemory()) {
    HalvorsundHost::Free(pointer);
  } else {
    callHost(bufferSuite->Dispose, &pointer);
  }
}

}  // namespace radiashafts
