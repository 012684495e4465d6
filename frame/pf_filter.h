// The filter as the host's interface wants it: selectors, the record and progress.
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

// Tells the host that nothing more is wanted.
void emptyRectangles(hostapi::FilterRecord& record);

class pfFilter : public HalvorsundHost, public EditedFilter {
 public:
  explicit pfFilter(FilterIdentity identity);

  // Runs one selector with the suites acquired for its length. block is an AboutRecord for the
  // selector 0 and a FilterRecord for all others. -1 for an unknown selector.
  std::int16_t Dispatch(std::int8_t selector, void* block);

  // In a final render, thread 0 reports to the host and polls its abort: -128. In a preview render
  // it dispatches the waiting window messages, -1 when the interface was closed; on every thread
  // -128 when a newer render is wanted 201 ms or more into this one.
  std::int32_t Progress(std::int32_t done, std::int32_t total, std::int32_t threadIndex) override;
  // From the host's memory. Between the renders of a preview, which are all alike, freed blocks are
  // kept.
  void* Allocate(std::uint32_t size) override;
  void Free(void* pointer) override;
  std::int32_t OutOfMemoryCode() const override { return hostapi::memoryFullError; }

  virtual std::int16_t DoParametersSelector(hostapi::FilterRecord* record);
  std::int16_t SetupFilterRecord(hostapi::FilterRecord* record, std::uint32_t scaleFactor) override;
  // By the host's colour picker, else by the interface's own.
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
  std::chrono::steady_clock::time_point lastLook;  // for messages, in a preview render
  std::uint32_t endedRender = 0;                   // start tick of the one the interface's end met
  // Of memory and of Progress. Recursive: a window procedure may come back while Progress pumps.
  platform::RecursiveLock memoryLock;
};

}  // namespace radiashafts
