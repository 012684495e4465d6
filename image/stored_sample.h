// Samples in the host's buffers.
#pragma once

#include "image/instruction_set.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// A sample at any address: the rows of a host need not be aligned for the sample type. On this
// processor, reads and writes of it are the same instructions as of aligned samples.
template <class Sample>
struct [[gnu::packed]] StoredSample {
  // NOLINTNEXTLINE(google-explicit-constructor): converts like a plain sample.
  operator Sample() const { return value; }
  StoredSample& operator=(Sample sample) {
    value = sample;
    return *this;
  }

  Sample value;
};

static_assert(alignof(StoredSample<float>) == 1 && sizeof(StoredSample<float>) == sizeof(float));

}  // namespace RADIASHAFTS_INSTRUCTION_SET
}  // namespace radiashafts
