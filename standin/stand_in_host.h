// A minimal host of the plug-in interface: runs a filter module on one picture.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "hostapi/constants.h"
#include "hostapi/filter_record.h"
#include "standin/host_fault.h"
#include "standin/picture.h"
#include "standin/script.h"

namespace radiashafts::standin {

using EntryPoint = void (*)(std::int16_t selector, void* block, std::intptr_t* data,
                            std::int16_t* result);

// The result of advanceState when its fault is injected.
inline constexpr hostapi::OSErr advanceStateError = -30100;

// The features that differ between hosts.
struct HostTraits {
  bool suites = true;
  bool descriptors = true;
  bool handleProcs = true;
  bool colorServices = true;
  bool displayPixels = true;
  bool sampling = true;  // false: ignores inputRate and maskRate, serves at full size
  int inputPadding = 0;  // bytes after each row of the input
  int outputPadding = 0;
  int maskPadding = 0;
  int guardBytes = 0;  // before and after each served buffer
  std::int16_t playInfo = hostapi::playDontDisplay;
  bool multichannel = false;                  // reports a multichannel mode
  void* ownerWindow = nullptr;                // native handle of the host's window
  std::optional<hostapi::Rect> selectedRect;  // the part of the picture that the host filters
};

// Faults that the host injects.
struct HostFaults {
  bool noAdvanceState = false;
  bool noProgressProc = false;
  Fault fault;
  int abortAtProgress = 0;  // abort after this many progress calls; 0 is never
};

struct RunResult {
  std::int16_t status = 0;  // the filter's result of the start selector
  Script script;            // returned by the filter; empty if it wrote none
  int progressCalls = 0;
  bool requestsEnded = false;  // the filter emptied its rectangles on start
  hostapi::Rect filterRect{};  // the record's value after the finish selector
  bool guardsIntact = true;    // guard bytes of all buffers passed to the filter
  int leaked = 0;              // buffers, handles and open descriptors that were not freed
};

class StandInHost {
 public:
  // input, mask and output must outlive this object. mask may be null. A run writes to output,
  // which must not be the same object as input.
  StandInHost(const Picture& input, const Mask* mask, HostTraits traits = {});
  StandInHost(const StandInHost&) = delete;
  StandInHost& operator=(const StandInHost&) = delete;

  HostFaults faults;
  std::function<void(std::int32_t done, std::int32_t total)> onProgress;
  std::function<bool()> abortWanted;
  // Simulates the user at the colour picker: changes the colour, 0 to 255 per component, or returns
  // false to cancel. If not set, the picker is cancelled.
  std::function<bool(std::array<std::int16_t, 3>& color)> chooseColor;

  // Calls all selectors of one run with a recorded script. output receives the filtered picture; it
  // is undefined when the status is not 0.
  RunResult run(EntryPoint entry, const Script& script, Picture& output);

 private:
  // A padded and guarded copy of pixels for the filter; empty when the picture's own bytes are
  // served.
  struct ServedBuffer {
    std::vector<std::uint8_t> copy;
    std::size_t rows = 0;
    std::size_t usedRowBytes = 0;
    std::size_t rowBytes = 0;
    std::size_t guard = 0;

    void prepare(std::size_t rowCount, std::size_t used, int padding, int guardBytes);
    std::uint8_t* row(std::size_t y) { return copy.data() + guard + y * rowBytes; }
    bool intact() const;
  };

  static hostapi::OSErr AdvanceState();
  static void ReportProgress(std::int32_t done, std::int32_t total);
  static hostapi::Boolean AbortWanted();
  static hostapi::OSErr ColorServices(hostapi::ColorServicesInfo* info);

  void fillRecord();
  void fillDescriptors(const Script& script);
  hostapi::OSErr serve();
  bool serveInput();
  bool serveOutput();
  bool serveMask();
  void copyOutputBack();
  bool guardsIntact() const;

  const Picture& input_;
  const Mask* mask_;
  HostTraits traits_;
  Picture* output_ = nullptr;
  hostapi::FilterRecord record_{};
  hostapi::PlatformData platformData_{};
  hostapi::PIDescriptorParameters descriptorParameters_{};
  ServedBuffer servedInput_;
  ServedBuffer servedOutput_;
  ServedBuffer servedMask_;
  hostapi::Rect servedOutRect_{};
  int progressCalls_ = 0;

  static StandInHost* current_;  // for the host's procs, which have no context argument
};

}  // namespace radiashafts::standin
