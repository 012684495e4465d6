// The base of all image filters.
#pragma once

#include <cstdint>
#include <limits>

#include "image/halvorsund_host.h"
#include "image/instruction_set.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// A filter is built on the caller's stack, filled field by field, run once and dropped. It does not
// own the host or any image.
class HalvorsundFilter {
 public:
  explicit HalvorsundFilter(HalvorsundHost& services) : host(&services) {}
  virtual ~HalvorsundFilter() = default;
  HalvorsundFilter(const HalvorsundFilter&) = delete;
  HalvorsundFilter& operator=(const HalvorsundFilter&) = delete;

  // Runs the filter over its image; stage out of stages is its place in the whole render, for
  // progress. Returns NoErrorCode or the first other status.
  virtual std::int32_t run(std::int32_t stage, std::int32_t stages) = 0;

  HalvorsundHost* host;
};

// A filter whose rows are independent of one another: the pool runs them in any order.
class RowFilter : public HalvorsundFilter {
 public:
  using HalvorsundFilter::HalvorsundFilter;

  // Handles one iteration, on a pool thread.
  virtual std::int32_t processRow(std::int32_t index, std::int32_t iterations,
                                  std::int32_t threadIndex) = 0;

 protected:
  // Runs processRow for iterations 0 to iterations - 1 on the pool.
  std::int32_t runIterations(std::int32_t iterations) {
    const auto callRow = [](void* context, std::int32_t index, std::int32_t count,
                            std::int32_t threadIndex) {
      return static_cast<RowFilter*>(context)->processRow(index, count, threadIndex);
    };
    return host->RunIterations(iterations, {this, callRow});
  }

  // The standard run: one iteration a row of an image of the given height.
  std::int32_t runRows(std::int32_t height, std::int32_t stagePosition, std::int32_t stageCount) {
    stage = stagePosition;
    stages = stageCount;
    return runIterations(height);
  }

  // Tells the host that the given row of an image of the given height is done.
  std::int32_t reportRow(std::int32_t row, std::int32_t height, std::int32_t threadIndex) {
    return host->Progress(stage * height + row, stages * height, threadIndex);
  }

  std::int32_t stage = 0;
  std::int32_t stages = 1;
};

// A working buffer from the host, given back at the end of its scope.
class HostBuffer {
 public:
  // Empty when width x height x elementBytes does not fit the 32 bits that Allocate takes, or when
  // the host has no memory.
  HostBuffer(HalvorsundHost& host, std::int32_t width, std::int32_t height,
             std::int32_t elementBytes)
      : host_(host) {
    const auto bytes = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) *
                       static_cast<std::uint64_t>(elementBytes);
    if (bytes <= std::numeric_limits<std::uint32_t>::max()) {
      data_ = host_.Allocate(static_cast<std::uint32_t>(bytes));
    }
  }
  ~HostBuffer() {
    if (data_ != nullptr) host_.Free(data_);
  }
  HostBuffer(const HostBuffer&) = delete;
  HostBuffer& operator=(const HostBuffer&) = delete;

  explicit operator bool() const { return data_ != nullptr; }
  void* data() const { return data_; }
  float* floats() const { return static_cast<float*>(data_); }

 private:
  HalvorsundHost& host_;
  void* data_ = nullptr;
};

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
