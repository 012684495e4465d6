// Memory from the host: the suites that it offers for a selector, and working buffers from them.
#pragma once

#include <array>
#include <cstdint>

#include "hostapi/suites.h"

namespace radiashafts {

// Buffers come from the host's Buffer Suite where it has the Handle Suite too, else from the heap.
// Not safe for several threads: the filter locks.
class HostMemory {
 public:
  // For the length of a selector. The Handle Suite keeps its last value where the host writes none.
  void acquireSuites(hostapi::SPBasicSuite* basicSuite);
  void releaseSuites();

  // Throws std::bad_alloc, or returns null when the host has no memory. With keep, which the
  // renders of a preview ask for, a block of the same size that was kept is used again.
  void* allocate(std::uint32_t size, bool keep);
  // With keep the block stays allocated for the next render.
  void free(void* pointer, bool keep);
  // Gives the kept blocks back that are not in use.
  void releaseKeptBlocks();

 private:
  struct KeptBlock {
    void* pointer = nullptr;
    std::uint32_t size = 0;
    bool inUse = false;
  };

  // A Handle Suite may be left over from an earlier host call, so both are asked for.
  bool usesSuites() const { return handleSuite_ != nullptr && bufferSuite_ != nullptr; }
  void* allocateBlock(std::uint32_t size);
  void freeBlock(void* pointer);

  hostapi::SPBasicSuite* basicSuite_ = nullptr;  // good for one selector, like the next two
  const hostapi::BufferSuite1* bufferSuite_ = nullptr;
  const hostapi::HandleSuite2* handleSuite_ = nullptr;
  std::array<KeptBlock, 8> keptBlocks_;  // more than a render asks for
};

}  // namespace radiashafts
