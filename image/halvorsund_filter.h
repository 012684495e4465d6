// The base of all image filters.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "image/halvorsund_host.h"
#include "image/instruction_set.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// A filter is a local object of its caller: its fields are set, run is called once. It owns neither
// the host nor any image.
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

// A filter whose rows do not depend on each other: the pool runs them in any order.
class RowFilter : public HalvorsundFilter {
 public:
  using HalvorsundFilter::HalvorsundFilter;

  // Does one iteration, on a pool thread: one row, or one of iterations bands of rows.
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

  // The usual run: one iteration for each row of an image of the given height.
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

// Rows first to end - 1, one of several bands of nearly the same height.
struct RowBand {
  RowBand(std::int32_t index, std::int32_t bands, std::int32_t height)
      : first(index * height / bands), end((index + 1) * height / bands) {}
  bool contains(std::int32_t y) const { return y >= first && y < end; }
  std::int32_t first, end;
};
// For bands of about 32 rows: enough of them for all threads, and few enough for work that each
// does once more for a row beside it. No side is above 32767, so products of both fit 32 bits.
inline std::int32_t bandCount(std::int32_t height) {
  return std::max(1, height / 32);
}

// A working buffer from the host, freed by the destructor.
class HostBuffer {
 public:
  explicit HostBuffer(HalvorsundHost& host) : host_(host) {}
  HostBuffer(HalvorsundHost& host, std::int32_t width, std::int32_t height,
             std::int32_t elementBytes, std::int32_t moreBytes = 0)
      : host_(host) {
    allocate(width, height, elementBytes, moreBytes);
  }
  ~HostBuffer() {
    if (data_ != nullptr) host_.Free(data_);
  }

  // Once. There is no buffer when width x height x elementBytes, and what comes behind them,
  // exceeds the 32 bits of Allocate, or when the host has no memory.
  void allocate(std::int32_t width, std::int32_t height, std::int32_t elementBytes,
                std::int32_t moreBytes = 0) {
    const auto bytes = static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height) *
                           static_cast<std::uint64_t>(elementBytes) +
                       static_cast<std::uint64_t>(moreBytes);
    if (bytes <= std::numeric_limits<std::uint32_t>::max()) {
      data_ = host_.Allocate(static_cast<std::uint32_t>(bytes));
    }
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
