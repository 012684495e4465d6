// The host's service tables: the basic suite, the suites acquired through it, and the older
// tables that the filter record points to.
#pragma once

#include <cstddef>
#include <cstdint>

#include "hostapi/types.h"

namespace hostapi {

struct SPBasicSuite {
  std::int32_t (*AcquireSuite)(const char* name, std::int32_t version, const void** suite);
  std::int32_t (*ReleaseSuite)(const char* name, std::int32_t version);
  Boolean (*IsEqual)(const char* first, const char* second);
  std::int32_t (*AllocateBlock)(std::size_t size, void** block);
  std::int32_t (*FreeBlock)(void* block);
  std::int32_t (*ReallocateBlock)(void* block, std::size_t size, void** newBlock);
  std::int32_t (*Undefined)();
};

constexpr char bufferSuiteName[] = "Photoshop Buffer Suite for Plug-ins";
constexpr std::int32_t bufferSuiteVersion = 1;

struct BufferSuite1 {
  // The host stores the allocated size in requestedSize. Returns null when it has no memory.
  void* (*New)(std::uint32_t* requestedSize, std::uint32_t minimumSize);
  void (*Dispose)(void** buffer);
  std::uint32_t (*GetSize)(void* buffer);
  std::uint32_t (*GetSpace)();
};

constexpr char handleSuiteName[] = "Photoshop Handle Suite for Plug-ins";
constexpr std::int32_t handleSuiteVersion = 2;

struct HandleSuite2 {
  Handle (*New)(std::int32_t size);
  void (*Dispose)(Handle handle);
  void (*DisposeRegularHandle)(Handle handle);
  void (*SetLock)(Handle handle, Boolean lock, void** address, Boolean* oldLock);
  std::int32_t (*GetSize)(Handle handle);
  OSErr (*SetSize)(Handle handle, std::int32_t size);
  void (*RecoverSpace)(std::int32_t size);
};

struct BufferProcs {
  std::int16_t bufferProcsVersion;
  std::int16_t numBufferProcs;
  OSErr (*allocateProc)(std::int32_t size, void** buffer);
  void* (*lockProc)(void* buffer, Boolean moveHigh);
  void (*unlockProc)(void* buffer);
  void (*freeProc)(void* buffer);
  std::int32_t (*spaceProc)();
};

constexpr std::int16_t handleProcsVersion = 1;
constexpr std::int16_t handleProcsCount = 8;

struct HandleProcs {
  std::int16_t handleProcsVersion;
  std::int16_t numHandleProcs;
  Handle (*newProc)(std::int32_t size);
  void (*disposeProc)(Handle handle);
  std::int32_t (*getSizeProc)(Handle handle);
  OSErr (*setSizeProc)(Handle handle, std::int32_t size);
  void* (*lockProc)(Handle handle, Boolean moveHigh);
  void (*unlockProc)(Handle handle);
  void (*recoverSpaceProc)(std::int32_t size);
  void (*disposeRegularHandleProc)(Handle handle);
};

static_assert(sizeof(SPBasicSuite) == 7 * sizeof(void*));
static_assert(sizeof(BufferSuite1) == 4 * sizeof(void*));
static_assert(sizeof(HandleSuite2) == 7 * sizeof(void*));
static_assert(offsetof(BufferProcs, allocateProc) == 8 && sizeof(BufferProcs) == 48);
static_assert(offsetof(HandleProcs, newProc) == 8 && sizeof(HandleProcs) == 72);

}  // namespace hostapi
