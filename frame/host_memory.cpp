#include "frame/host_memory.h"

#include <algorithm>
#include <new>

#include "platform/host_call.h"

namespace radiashafts {

using platform::callHost;

void HostMemory::acquireSuites(hostapi::SPBasicSuite* basicSuite) {
  basicSuite_ = basicSuite;
  bufferSuite_ = nullptr;
  if (basicSuite == nullptr) return;
  const void* suite = nullptr;
  callHost(basicSuite->AcquireSuite, hostapi::bufferSuiteName, hostapi::bufferSuiteVersion, &suite);
  bufferSuite_ = static_cast<const hostapi::BufferSuite1*>(suite);
  suite = handleSuite_;
  callHost(basicSuite->AcquireSuite, hostapi::handleSuiteName, hostapi::handleSuiteVersion, &suite);
  handleSuite_ = static_cast<const hostapi::HandleSuite2*>(suite);
}

void HostMemory::releaseSuites() {
  if (basicSuite_ == nullptr) return;
  callHost(basicSuite_->ReleaseSuite, hostapi::bufferSuiteName, hostapi::bufferSuiteVersion);
  callHost(basicSuite_->ReleaseSuite, hostapi::handleSuiteName, hostapi::handleSuiteVersion);
}

// When no kept block has the size, the view has changed, and the kept ones are freed.
void* HostMemory::allocate(std::uint32_t size, bool keep) {
  const auto fits = [=](const KeptBlock& block) {
    return block.pointer != nullptr && !block.inUse && block.size == size;
  };
  const auto kept = std::find_if(keptBlocks_.begin(), keptBlocks_.end(), fits);
  if (keep && kept != keptBlocks_.end()) {
    kept->inUse = true;
    return kept->pointer;
  }
  releaseKeptBlocks();
  void* const pointer = allocateBlock(size);
  const auto empty = std::find_if(keptBlocks_.begin(), keptBlocks_.end(),
                                  [](const KeptBlock& block) { return block.pointer == nullptr; });
  if (keep && empty != keptBlocks_.end()) *empty = {pointer, size, true};
  return pointer;
}

void HostMemory::free(void* pointer, bool keep) {
  if (pointer == nullptr) return;
  const auto kept = std::find_if(keptBlocks_.begin(), keptBlocks_.end(),
                                 [=](const KeptBlock& block) { return block.pointer == pointer; });
  if (kept != keptBlocks_.end()) {
    kept->inUse = false;
    if (keep) return;
    *kept = {};
  }
  freeBlock(pointer);
}

void HostMemory::releaseKeptBlocks() {
  for (KeptBlock& block : keptBlocks_) {
    if (block.pointer == nullptr || block.inUse) continue;
    freeBlock(block.pointer);
    block = {};
  }
}

void* HostMemory::allocateBlock(std::uint32_t size) {
  if (!usesSuites()) return ::operator new(size);
  std::uint32_t requested = size;
  return callHost(bufferSuite_->New, &requested, size);
}

void HostMemory::freeBlock(void* pointer) {
  if (usesSuites()) {
    callHost(bufferSuite_->Dispose, &pointer);
  } else {
    ::operator delete(pointer);
  }
}

}  // namespace radiashafts
