// Samples in memory that the host has laid out.
#pragma once

#include "image/instruction_set.h"

namespace radiashafts {
inline namespace RADIASHAFTS_INSTRUCTION_SET {

// A sample that may stand at any address: rows of a host need not begin where its type wants to.
// Reads and writes cost what those of aligned samples do.
template <class Sample>
struct [[gnu::packed]] StoredSample {
  // NOLINTNEXTLINE(google-explicit-constructor): it is a sample wherever one is wanted.
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
