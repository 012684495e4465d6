#include "platform/global_handle.h"
#include <windows.h>

namespace radiashafts::platform {
namespace {

void freeBlock(void* block) {
  const HGLOBAL global = GlobalHandle(block);
  if (global == nullptr) return;
  GlobalUnlock(global);
  GlobalFree(global);
}

}  // namespace

void freeGlobalHandle(void** handle) {
  if (handle == nullptr) return;
  if (*handle != nullptr) freeBlock(*handle);
  freeBlock(handle);
}

}  // namespace radiashafts::platform
