// The typed entry of the pipeline.
#pragma once

#include <cstdint>
#include <type_traits>

#include "image/halvorsund_host.h"
#include "image/instruction_set.h"
#include "render/render_values.h"

namespace radiashafts {

// The host's buffers, from its record. Width and height are positive; input and output not null.
struct HostBuffers {
  std::int32_t width;
  std::int32_t height;
  std::int32_t planes;  // of a pixel, those that are not rendered included
  void* input;
  std::int32_t inputRowBytes;
  void* output;
  std::int32_t outputRowBytes;
  void* mask;  // may be null
  std::int32_t maskRowBytes;
};
static_assert(std::is_trivially_copyable_v<HostBuffers>);

// Renders one picture with configuration Number; the result is the same for every instruction set.
// Returns a status of the host. The build generates a source file for each number and compiles it
// for each set.
template <int Number, InstructionSet set>
std::int32_t RenderTemplate(HalvorsundHost& host, const HostBuffers& buffers,
                            const RenderValues& values);

}  // namespace radiashafts
