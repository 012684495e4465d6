// The selectors. The start selector does all the work of a run.

#include <cstdio>
#include <string>

#include "diagnostics/debug_log.h"
#include "frame/pf_filter.h"
#include "hostapi/constants.h"
#include "platform/host_call.h"
#include "platform/message_box.h"

namespace radiashafts {
namespace {

void traceSelector(const char* name, const void* record) {
  trace("pfFilter::", name, "( pFilterRecord(0x", record, ") )");
}

// RAII: restores the host's filterRect, which the host may still use to apply the selection after
// the filter has run.
class FilterRectRestorer {
 public:
  explicit FilterRectRestorer(hostapi::FilterRecord& record)
      : record_(record), rectangle_(record.filterRect) {}
  ~FilterRectRestorer() { record_.filterRect = rectangle_; }
  FilterRectRestorer(const FilterRectRestorer&) = delete;
  FilterRectRestorer& operator=(const FilterRectRestorer&) = delete;

 private:
  hostapi::FilterRecord& record_;
  hostapi::Rect rectangle_;
};

}  // namespace

void emptyRectangles(hostapi::FilterRecord& record) {
  record.inRect = record.outRect = record.maskRect = {0, 0, 0, 0};
}

std::int16_t pfFilter::DoAboutSelector(hostapi::AboutRecord* record) {
  traceSelector("DoAboutSelector", record);
  const LogIndent indent;
  const FilterIdentity& id = identity();
  char text[256];
  std::snprintf(text, sizeof text, "%s v%d.%d.%d\r%s", id.name.c_str(), id.versionMajor,
                id.versionMinor, id.versionRevision, id.description.c_str());
  ShowAbout(text);
  trace("pfFilter::DoAboutSelector( return(", 0, ") )");
  return 0;
}

// Shows no dialog: the start selector opens the interface.
std::int16_t pfFilter::DoParametersSelector(hostapi::FilterRecord* record) {
  traceSelector("DoParametersSelector", record);
  const LogIndent indent;
  parameters.ValidateAll();
  trace("pfFilter::DoParametersSelector( return(", 0, ") )");
  return 0;
}

// The filter allocates on demand, so the host reserves no buffer space for it and maxSpace is not
// used.
std::int16_t pfFilter::DoPrepareSelector(hostapi::FilterRecord* record) {
  traceSelector("DoPrepareSelector", record);
  const LogIndent indent;
  record->bufferSpace = 0;
  record->maxSpace = 0;
  return 0;
}

std::int16_t pfFilter::DoStartSelector(hostapi::FilterRecord* record) {
  traceSelector("DoStartSelector", record);
  const LogIndent indent;
  const FilterRectRestorer restoreAtEnd(*record);
  const std::int16_t result = RunFilter(record);
  emptyRectangles(*record);
  trace("pfFilter::DoStartSelector( return(", result, ") )");
  return result;
}

std::int16_t pfFilter::RunFilter(hostapi::FilterRecord* record) {
  if (record->advanceState == nullptr || record->progressProc == nullptr) {
    logLine(severityError, errorMarker,
            "AdvanceStateAvailable() or ProgressProcedure not available");
    platform::callHost(platform::showErrorBox, GetFilterName(),
                       "Sorry, but this Plug-In requires some functions\n"
                       " which are not supported by this host.\n"
                       " you need a photoshop 3.0+ compatible host to run this filter.");
    return 1;
  }
  parameters.ValidateAll();
  const bool showsInterface = parameters.ReadScriptParams(record);
  const bool confirmed = !showsInterface || preview->Show(this, record, &widgets);
  parameters.WriteScriptParams(record);  // also after Cancel
  if (!confirmed) return hostapi::userCanceledError;

  parameters.ValidateAll();  // the interface or the script may have left values outside the limits
  std::int16_t result = SetupFilterRecord(record, 1);
  if (result != 0) return result;
  previewLevel = 0;
  result = SelectRenderTemplate(record);
  Progress(0, 1, 0);  // resets the host's progress bar
  return result;
}

std::int16_t pfFilter::DoContinueSelector(hostapi::FilterRecord* record) {
  traceSelector("DoContinueSelector", record);
  return 0;
}

std::int16_t pfFilter::DoFinishSelector(hostapi::FilterRecord* record) {
  traceSelector("DoFinishSelector", record);
  return 0;
}

}  // namespace radiashafts
