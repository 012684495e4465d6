#include "standin/stand_in_host.h"

#include <algorithm>
#include <cstring>

#include "standin/descriptors.h"
#include "standin/host_buffer_suite.h"
#include "standin/host_display.h"

namespace radiashafts::standin {
namespace {

constexpr std::uint8_t guardByte = 0xA5;

std::int32_t acquireSuite(const char* name, std::int32_t version, const void** suite) {
  constexpr std::int32_t unknownSuite = -1;
  if (callFails(Service::suites)) return unknownSuite;
  if (std::strcmp(name, hostapi::bufferSuiteName) == 0 && version == hostapi::bufferSuiteVersion) {
    *suite = bufferSuite();
    return 0;
  }
  if (std::strcmp(name, hostapi::handleSuiteName) == 0 && version == hostapi::handleSuiteVersion) {
    *suite = handleSuite();
    return 0;
  }
  return unknownSuite;
}

std::int32_t releaseSuite(const char*, std::int32_t) {
  return callFails(Service::suites) ? -1 : 0;
}

hostapi::SPBasicSuite* basicSuite() {
  static hostapi::SPBasicSuite suite{acquireSuite, releaseSuite, nullptr, nullptr,
                                     nullptr,      nullptr,      nullptr};
  return &suite;
}

bool isEmpty(const hostapi::Rect& rect) {
  return rect.left >= rect.right || rect.top >= rect.bottom;
}

std::size_t widthOf(const hostapi::Rect& rect) {
  return static_cast<std::size_t>(rect.right - rect.left);
}

std::size_t heightOf(const hostapi::Rect& rect) {
  return static_cast<std::size_t>(rect.bottom - rect.top);
}

// The pixel of the full-size image for a position in a request at the given rate.
std::size_t sampledAt(int position, hostapi::Fixed rate, int side) {
  const std::int64_t at = static_cast<std::int64_t>(position) * rate / hostapi::fixedOne;
  return static_cast<std::size_t>(std::clamp<std::int64_t>(at, 0, side - 1));
}

}  // namespace

StandInHost* StandInHost::current_ = nullptr;

void StandInHost::ServedBuffer::prepare(std::size_t rowCount, std::size_t used, int padding,
                                        int guardBytes) {
  rows = rowCount;
  usedRowBytes = used;
  rowBytes = used + static_cast<std::size_t>(padding);
  guard = static_cast<std::size_t>(guardBytes);
  copy.assign(rows * rowBytes + 2 * guard, guardByte);
}

bool StandInHost::ServedBuffer::intact() const {
  const auto isGuard = [this](std::size_t from, std::size_t to) {
    return std::all_of(copy.begin() + static_cast<std::ptrdiff_t>(from),
                       copy.begin() + static_cast<std::ptrdiff_t>(to),
                       [](std::uint8_t byte) { return byte == guardByte; });
  };
  if (copy.empty()) return true;
  if (!isGuard(0, guard) || !isGuard(copy.size() - guard, copy.size())) return false;
  for (std::size_t y = 0; y < rows; ++y) {
    if (!isGuard(guard + y * rowBytes + usedRowBytes, guard + (y + 1) * rowBytes)) return false;
  }
  return true;
}

StandInHost::StandInHost(const Picture& input, const Mask* mask, HostTraits traits)
    : input_(input), mask_(mask), traits_(traits) {
  fillRecord();
}

void StandInHost::fillRecord() {
  record_ = {};
  record_.abortProc = AbortWanted;
  record_.progressProc = ReportProgress;
  record_.advanceState = AdvanceState;
  record_.imageSize = {static_cast<std::int16_t>(input_.height),
                       static_cast<std::int16_t>(input_.width)};
  record_.wholeSize = record_.imageSize;
  record_.planes = static_cast<std::int16_t>(input_.planes);
  record_.filterRect =
      traits_.selectedRect.value_or(hostapi::Rect{0, 0, record_.imageSize.v, record_.imageSize.h});
  record_.haveMask = mask_ != nullptr ? 1 : 0;
  record_.autoMask = 1;
  record_.maxSpace = 1 << 30;
  record_.hostSig = hostapi::fourCharacterCode("RSsi");
  record_.imageMode = imageModeOf(input_);
  if (traits_.multichannel) {
    record_.imageMode =
        input_.depth == 8 ? hostapi::modeMultichannel : hostapi::modeDeepMultichannel;
  }
  record_.imageHRes = record_.imageVRes = 300 * hostapi::fixedOne;
  platformData_.ownerWindow = traits_.ownerWindow;
  record_.platformData = &platformData_;
  record_.samplingSupport = traits_.sampling ? 2 : 0;
  record_.inputRate = record_.maskRate = hostapi::fixedOne;
  record_.depth = input_.depth;
  record_.filterCase = static_cast<std::int16_t>(
      (input_.hasAlpha ? hostapi::editableTransparencyNoSelection : hostapi::flatImageNoSelection) +
      (mask_ != nullptr ? 1 : 0));
  if (input_.hasAlpha) {
    record_.inLayerPlanes = record_.outLayerPlanes = static_cast<std::int16_t>(input_.colorPlanes);
    record_.inTransparencyMask = record_.outTransparencyMask = 1;
    record_.inNonLayerPlanes = record_.outNonLayerPlanes =
        static_cast<std::int16_t>(input_.planes - input_.colorPlanes - 1);
  } else {
    record_.inNonLayerPlanes = record_.outNonLayerPlanes = static_cast<std::int16_t>(input_.planes);
  }
  if (traits_.handleProcs) record_.handleProcs = handleProcs();
  if (traits_.colorServices) record_.colorServices = ColorServices;
  if (traits_.displayPixels) record_.displayPixels = displayPixels;
  if (traits_.suites) record_.sSPBasic = basicSuite();
}

void StandInHost::fillDescriptors(const Script& script) {
  if (!traits_.descriptors) return;
  descriptorParameters_ = {};
  descriptorParameters_.playInfo = traits_.playInfo;
  descriptorParameters_.descriptor = makeDescriptor(script);
  descriptorParameters_.readDescriptorProcs = readDescriptorProcs();
  descriptorParameters_.writeDescriptorProcs = writeDescriptorProcs();
  record_.descriptorParameters = &descriptorParameters_;
}

RunResult StandInHost::run(EntryPoint entry, const Script& script, Picture& output) {
  current_ = this;
  output_ = &output;
  bufferGuardsIntact() = true;
  const int liveBefore = liveObjects().count();
  progressCalls_ = 0;

  fillRecord();
  fillDescriptors(script);
  if (faults.noAdvanceState) record_.advanceState = nullptr;
  if (faults.noProgressProc) record_.progressProc = nullptr;

  setFault(faults.fault);
  std::intptr_t data = 0;
  const auto call = [&](std::int16_t selector) {
    std::int16_t result = 0;
    entry(selector, &record_, &data, &result);
    return result;
  };
  RunResult result;
  call(hostapi::selectorParameters);
  call(hostapi::selectorPrepare);
  result.status = call(hostapi::selectorStart);
  result.requestsEnded =
      isEmpty(record_.inRect) && isEmpty(record_.outRect) && isEmpty(record_.maskRect);
  if (result.status == 0) {
    constexpr int maximumTiles = 1000;  // stops a filter that never empties its rectangles
    for (int tile = 0; tile < maximumTiles && !isEmpty(record_.outRect); ++tile) {
      if (serve() != 0 || call(hostapi::selectorContinue) != 0) break;
    }
    copyOutputBack();
    call(hostapi::selectorFinish);
  }

  setFault({});
  result.filterRect = record_.filterRect;
  result.script = scriptOf(descriptorParameters_.descriptor);
  disposeHandle(descriptorParameters_.descriptor);
  descriptorParameters_.descriptor = nullptr;
  result.progressCalls = progressCalls_;
  result.guardsIntact = guardsIntact() && bufferGuardsIntact();
  result.leaked = liveObjects().count() - liveBefore;
  current_ = nullptr;
  return result;
}

hostapi::OSErr StandInHost::serve() {
  if (callFails(Service::advanceState)) return advanceStateError;
  constexpr hostapi::OSErr badRequest = -30100;
  copyOutputBack();
  return serveInput() && serveOutput() && serveMask() ? hostapi::OSErr{0} : badRequest;
}

// Serves the input's own bytes if the whole picture is requested without padding and guards, else a
// copy.
bool StandInHost::serveInput() {
  const hostapi::Rect& rect = record_.inRect;
  if (isEmpty(rect)) return true;
  if (record_.inLoPlane != 0 || record_.inHiPlane != input_.planes - 1) return false;
  const hostapi::Fixed rate = traits_.sampling ? record_.inputRate : hostapi::fixedOne;
  const bool whole = rate == hostapi::fixedOne && rect.left == 0 && rect.top == 0 &&
                     rect.right == input_.width && rect.bottom == input_.height;
  if (whole && traits_.inputPadding == 0 && traits_.guardBytes == 0) {
    record_.inData = const_cast<std::uint8_t*>(input_.bytes.data());
    record_.inRowBytes = static_cast<std::int32_t>(input_.rowBytes());
    return true;
  }
  const std::size_t pixel = input_.pixelBytes();
  servedInput_.prepare(heightOf(rect), widthOf(rect) * pixel, traits_.inputPadding,
                       traits_.guardBytes);
  for (int y = rect.top; y < rect.bottom; ++y) {
    std::uint8_t* to = servedInput_.row(static_cast<std::size_t>(y - rect.top));
    const std::uint8_t* from =
        input_.bytes.data() + sampledAt(y, rate, input_.height) * input_.rowBytes();
    for (int x = rect.left; x < rect.right; ++x, to += pixel) {
      std::memcpy(to, from + sampledAt(x, rate, input_.width) * pixel, pixel);
    }
  }
  record_.inData = servedInput_.row(0);
  record_.inRowBytes = static_cast<std::int32_t>(servedInput_.rowBytes);
  return true;
}

// The output buffer is filled with the current pixels, so that planes that the filter does not
// write are kept.
bool StandInHost::serveOutput() {
  const hostapi::Rect& rect = record_.outRect;
  servedOutRect_ = rect;
  if (isEmpty(rect)) return true;
  if (rect.left < 0 || rect.top < 0 || rect.right > input_.width || rect.bottom > input_.height) {
    return false;
  }
  if (output_->bytes.empty()) *output_ = input_;
  const bool whole = widthOf(rect) == static_cast<std::size_t>(input_.width) &&
                     heightOf(rect) == static_cast<std::size_t>(input_.height);
  if (whole && traits_.outputPadding == 0 && traits_.guardBytes == 0) {
    servedOutput_ = {};
    record_.outData = output_->bytes.data();
    record_.outRowBytes = static_cast<std::int32_t>(output_->rowBytes());
    return true;
  }
  const std::size_t pixel = input_.pixelBytes();
  servedOutput_.prepare(heightOf(rect), widthOf(rect) * pixel, traits_.outputPadding,
                        traits_.guardBytes);
  for (int y = rect.top; y < rect.bottom; ++y) {
    std::memcpy(servedOutput_.row(static_cast<std::size_t>(y - rect.top)),
                output_->bytes.data() + static_cast<std::size_t>(y) * output_->rowBytes() +
                    static_cast<std::size_t>(rect.left) * pixel,
                servedOutput_.usedRowBytes);
  }
  record_.outData = servedOutput_.row(0);
  record_.outRowBytes = static_cast<std::int32_t>(servedOutput_.rowBytes);
  return true;
}

bool StandInHost::serveMask() {
  const hostapi::Rect& rect = record_.maskRect;
  if (mask_ == nullptr || isEmpty(rect)) return true;
  const hostapi::Fixed rate = traits_.sampling ? record_.maskRate : hostapi::fixedOne;
  servedMask_.prepare(heightOf(rect), widthOf(rect), traits_.maskPadding, traits_.guardBytes);
  for (int y = rect.top; y < rect.bottom; ++y) {
    std::uint8_t* to = servedMask_.row(static_cast<std::size_t>(y - rect.top));
    const std::uint8_t* from = mask_->bytes.data() + sampledAt(y, rate, mask_->height) *
                                                         static_cast<std::size_t>(mask_->width);
    for (int x = rect.left; x < rect.right; ++x) *to++ = from[sampledAt(x, rate, mask_->width)];
  }
  record_.maskData = servedMask_.row(0);
  record_.maskRowBytes = static_cast<std::int32_t>(servedMask_.rowBytes);
  return true;
}

// Copies the pixels that the filter wrote into the output picture.
void StandInHost::copyOutputBack() {
  if (isEmpty(servedOutRect_) || servedOutput_.copy.empty()) return;
  const std::size_t pixel = input_.pixelBytes();
  for (int y = servedOutRect_.top; y < servedOutRect_.bottom; ++y) {
    std::memcpy(output_->bytes.data() + static_cast<std::size_t>(y) * output_->rowBytes() +
                    static_cast<std::size_t>(servedOutRect_.left) * pixel,
                servedOutput_.row(static_cast<std::size_t>(y - servedOutRect_.top)),
                servedOutput_.usedRowBytes);
  }
  servedOutRect_ = {};
}

bool StandInHost::guardsIntact() const {
  return servedInput_.intact() && servedOutput_.intact() && servedMask_.intact();
}

hostapi::OSErr StandInHost::AdvanceState() {
  return current_->serve();
}

void StandInHost::ReportProgress(std::int32_t done, std::int32_t total) {
  ++current_->progressCalls_;
  if (current_->onProgress) current_->onProgress(done, total);
}

hostapi::Boolean StandInHost::AbortWanted() {
  const HostFaults& faults = current_->faults;
  if (faults.abortAtProgress > 0 && current_->progressCalls_ >= faults.abortAtProgress) return 1;
  return current_->abortWanted && current_->abortWanted() ? 1 : 0;
}

hostapi::OSErr StandInHost::ColorServices(hostapi::ColorServicesInfo* info) {
  constexpr hostapi::OSErr badRequest = -50;
  if (info->infoSize != sizeof *info || info->selector != hostapi::colorServicesChooseColor) {
    return badRequest;
  }
  std::array<std::int16_t, 3> color{info->colorComponents[0], info->colorComponents[1],
                                    info->colorComponents[2]};
  if (!current_->chooseColor || !current_->chooseColor(color)) return hostapi::userCanceledError;
  std::copy(color.begin(), color.end(), info->colorComponents);
  return 0;
}

}  // namespace radiashafts::standin
