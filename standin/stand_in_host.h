// A host of the plug-in interface in small: serves one picture to a filter module and takes the
// result.
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

// What advanceState answers where it fails on request.
inline constexpr hostapi::OSErr advanceStateError = -30100;

// What hosts differ in.
struct HostTraits {
  bool suites = true;
  bool descriptors = true;
  bool handleProcs = true;
  bool colorServices = true;
  bool displayPixels = true;
  bool sampling = true;  // else requests are filled from the full-size image
  int inputPadding = 0;  // bytes behind each row of the input
  int outputPadding = 0;
  int maskPadding = 0;
  int guardBytes = 0;  // before and behind each served buffer
  std::int16_t playInfo = hostapi::playDontDisplay;
  bool multichannel = false;                  // shows the picture as channels without a meaning
  void* ownerWindow = nullptr;                // the system's handle of the host's window
  std::optional<hostapi::Rect> selectedRect;  // the part of the picture that the host filters
};

// Faults that the host is to show.
struct HostFaults {
  bool noAdvanceState = false;
  bool noProgressProc = false;
  Fault fault;
  int abortAtProgress = 0;  // the number of the progress call behind which the user aborts
};

struct RunResult {
  std::int16_t status = 0;  // what the filter answered to start
  Script script;            // what it handed back, empty where it wrote none
  int progressCalls = 0;
  bool requestsEnded = false;  // the filter emptied its rectangles on start
  hostapi::Rect filterRect{};  // as the host finds it behind finish
  bool guardsIntact = true;    // of all buffers that the filter was given
  int leaked = 0;              // buffers, handles and open descriptors that did not come back
};

class StandInHost {
 public:
  // input, mask and output stand for as long as this. mask may be null. A run writes into output,
  // which may not be the input.
  StandInHost(const Picture& input, const Mask* mask, HostTraits traits = {});
  StandInHost(const StandInHost&) = delete;
  StandInHost& operator=(const StandInHost&) = delete;

  HostFaults faults;
  std::function<void(std::int32_t done, std::int32_t total)> onProgress;
  std::function<bool()> abortWanted;
  // The user at the colour picker: gets a colour, 0 to 255, and changes it or answers false to
  // cancel. Without it the picker is cancelled.
  std::function<bool(std::array<std::int16_t, 3>& color)> chooseColor;

  // Goes through the selectors of one run with a recorded script. output becomes the filtered
  // picture; it is of no use when the status is not 0.
  RunResult run(EntryPoint entry, const Script& script, Picture& output);

 private:
  // One buffer as the filter sees it: the picture's own bytes where the traits allow it, else a
  // padded and guarded copy.
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
  void takeOutput();
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

  static StandInHost* current_;  // the host's procs carry no context
};

}  // namespace radiashafts::standin
