// The filter as a plug-in: handles selectors, fills in the host's record and reports progress.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>

#include "frame/host_memory.h"
#include "hostapi/constants.h"
#include "hostapi/filter_record.h"
#include "image/halvorsund_host.h"
#include "interface/model/edited_filter.h"
#include "interface/model/preview.h"
#include "interface/model/widgets.h"
#include "platform/recursive_lock.h"

namespace radiashafts {

// Empties inRect, outRect and maskRect, so that the host does not call the continue selector.
void emptyRectangles(hostapi::FilterRecord& record);

class pfFilter : public HalvorsundHost, public EditedFilter {
 public:
  explicit pfFilter(FilterIdentity identity);

  // Acquires the suites, runs one selector and releases them. block is an AboutRecord for selector
  // 0 and a FilterRecord for all others. Returns the status for the host; -1 for an unknown
  // selector.
  std::int16_t Dispatch(std::int8_t selector, void* block);

  // In a final render thread 0 reports to the host and polls its abortProc: -128 on abort. In a
  // preview render thread 0 dispatches pending window messages. There every thread gets -1 when the
  // interface was closed, and -128 when a newer render is pending and this one has run 201 ms.
  std::int32_t Progress(std::int32_t done, std::int32_t total, std::int32_t threadIndex) override;
  // The host's memory. Preview renders allocate the same sizes again and again, so blocks freed
  // there are kept for the next one.
  void* Allocate(std::uint32_t size) override;
  void Free(void* pointer) override;
  std::int32_t OutOfMemoryCode() const override { return hostapi::memoryFullError; }

  virtual std::int16_t DoParametersSelector(hostapi::FilterRecord* record);
  std::int16_t SetupFilterRecord(hostapi::FilterRecord* record, std::uint32_t scaleFactor) override;
  // Shows the host's colour chooser, or the interface's own when the host has none.
  bool RequestColor(hostapi::FilterRecord* record, double* red, double* green,
                    double* blue) override;

 protected:
  std::unique_ptr<pfPreview> preview;
  WidgetList widgets;

 private:
  std::int16_t DoAboutSelector(hostapi::AboutRecord* record);
  std::int16_t DoPrepareSelector(hostapi::FilterRecord* record);
  std::int16_t DoStartSelector(hostapi::FilterRecord* record);
  std::int16_t DoContinueSelector(hostapi::FilterRecord* record);
  std::int16_t DoFinishSelector(hostapi::FilterRecord* record);

  class SelectorGuard;
  std::int16_t RunSelector(std::int8_t selector, void* block);
  std::int16_t RunFilter(hostapi::FilterRecord* record);
  std::int32_t ReportToHost(std::int32_t done, std::int32_t total);
  std::int32_t PumpMessages(std::int32_t threadIndex);

  HostMemory memory;
  hostapi::FilterRecord* currentRecord = nullptr;
  std::chrono::steady_clock::time_point lastPump;  // when Progress last pumped messages
  std::uint32_t quitRenderTick = 0;  // nRenderStartTick of the render that met a quit message
  // Guards memory and Progress. Recursive, because window procedures that Progress dispatches may
  // call back into the filter.
  platform::RecursiveLock memoryLock;
};

}  // namespace radiashafts
