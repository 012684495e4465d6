// The host's memory suites and the working buffers allocated from them.
#pragma once

#include <array>
#include <cstdint>

#include "hostapi/suites.h"

namespace radiashafts {

// Allocates buffers from the host's Buffer Suite when the Handle Suite is available too, else from
// the heap. Not thread-safe: the filter locks a mutex around each call.
class HostMemory {
 public:
  // Called at the start and at the end of a selector. When the host writes no Handle Suite, the
  // pointer of the last selector is kept.
  void acquireSuites(hostapi::SPBasicSuite* basicSuite);
  void releaseSuites();

  // Throws std::bad_alloc, or returns null when the host has no memory. With keep, set for preview
  // renders, a kept block of the same size is reused. size is in bytes.
  void* allocate(std::uint32_t size, bool keep);
  // With keep a block that was allocated with keep stays allocated for the next render.
  void free(void* pointer, bool keep);
  // Frees the kept blocks that are not in use.
  void releaseKeptBlocks();

 private:
  struct KeptBlock {
    void* pointer = nullptr;
    std::uint32_t size = 0;
    bool inUse = false;
  };

  // Both are checked, because the Handle Suite may be left over from an earlier selector.
  bool usesSuites() const { return handleSuite_ != nullptr && bufferSuite_ != nullptr; }
  void* allocateBlock(std::uint32_t size);
  void freeBlock(void* pointer);

  hostapi::SPBasicSuite* basicSuite_ = nullptr;  // valid for one selector, like the next two
  const hostapi::BufferSuite1* bufferSuite_ = nullptr;
  const hostapi::HandleSuite2* handleSuite_ = nullptr;
  std::array<KeptBlock, 8> keptBlocks_;  // more than a render allocates
};

}  // namespace radiashafts
