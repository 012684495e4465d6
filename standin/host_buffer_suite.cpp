#include "standin/host_buffer_suite.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <new>

#include "standin/descriptors.h"
#include "standin/host_fault.h"
#include "standin/system/huge_pages.h"

namespace radiashafts::standin {
namespace {

constexpr std::size_t guardSize = 64;  // keeps the buffer aligned for any use
constexpr std::uint8_t guardByte = 0xA5;

// Stored in the first bytes of the leading guard.
struct Header {
  std::uint32_t size;
};

std::uint8_t* blockOf(void* buffer) {
  return static_cast<std::uint8_t*>(buffer) - guardSize;
}

std::uint32_t sizeOf(void* buffer) {
  return reinterpret_cast<Header*>(blockOf(buffer))->size;
}

bool isGuard(const std::uint8_t* from, const std::uint8_t* to) {
  return std::all_of(from, to, [](std::uint8_t byte) { return byte == guardByte; });
}

struct DisposedBlocks {
  std::mutex mutex;
  bool areKept = false;
  std::multimap<std::size_t, std::uint8_t*> bySize;
};

DisposedBlocks& disposedBlocks() {
  static DisposedBlocks blocks;
  return blocks;
}

std::uint8_t* newBlock(std::size_t size) {
  DisposedBlocks& disposed = disposedBlocks();
  const std::lock_guard lock(disposed.mutex);
  if (const auto kept = disposed.bySize.extract(size)) return kept.mapped();
  return static_cast<std::uint8_t*>(
      ::operator new(size, std::align_val_t(guardSize), std::nothrow));
}

void disposeBlock(std::uint8_t* block, std::size_t size) {
  DisposedBlocks& disposed = disposedBlocks();
  const std::lock_guard lock(disposed.mutex);
  if (disposed.areKept) {
    disposed.bySize.emplace(size, block);
  } else {
    ::operator delete(block, std::align_val_t(guardSize));
  }
}

std::size_t blockSize(std::size_t size) {
  return (size + 2 * guardSize + guardSize - 1) / guardSize * guardSize;
}

void* newBuffer(std::uint32_t* requestedSize, std::uint32_t minimumSize) {
  if (callFails(Service::buffers)) return nullptr;
  const std::size_t size = std::max(requestedSize != nullptr ? *requestedSize : 0, minimumSize);
  const std::size_t total = blockSize(size);
  std::uint8_t* block = newBlock(total);
  if (block == nullptr) return nullptr;
  standin::preferHugePages(block, total);
  std::fill_n(block, guardSize, guardByte);
  std::fill(block + guardSize + size, block + total, guardByte);
  reinterpret_cast<Header*>(block)->size = static_cast<std::uint32_t>(size);
  if (requestedSize != nullptr) *requestedSize = static_cast<std::uint32_t>(size);
  ++liveObjects().buffers;
  return block + guardSize;
}

void disposeBuffer(void** buffer) {
  if (*buffer == nullptr) return;
  std::uint8_t* block = blockOf(*buffer);
  const std::uint8_t* end = block + guardSize + sizeOf(*buffer);
  if (!isGuard(block + sizeof(Header), block + guardSize) || !isGuard(end, end + guardSize)) {
    bufferGuardsIntact() = false;
  }
  --liveObjects().buffers;
  disposeBlock(block, blockSize(sizeOf(*buffer)));
  *buffer = nullptr;
}

std::uint32_t bufferSpace() {
  return 0x7FFFFFFF;
}

void setLock(hostapi::Handle handle, hostapi::Boolean, void** address, hostapi::Boolean* oldLock) {
  if (address != nullptr) *address = *handle;
  if (oldLock != nullptr) *oldLock = 0;
}

}  // namespace

std::atomic<bool>& bufferGuardsIntact() {
  static std::atomic<bool> intact{true};
  return intact;
}

const hostapi::BufferSuite1* bufferSuite() {
  static const hostapi::BufferSuite1 suite{newBuffer, disposeBuffer, sizeOf, bufferSpace};
  return &suite;
}

void keepDisposedBuffers() {
  disposedBlocks().areKept = true;
}

const hostapi::HandleSuite2* handleSuite() {
  const hostapi::HandleProcs& procs = *handleProcs();
  static const hostapi::HandleSuite2 suite{
      procs.newProc,     procs.disposeProc, procs.disposeRegularHandleProc, setLock,
      procs.getSizeProc, procs.setSizeProc, procs.recoverSpaceProc};
  return &suite;
}

}  // namespace radiashafts::standin
