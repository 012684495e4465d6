// DllMain, which the system calls when it loads and unloads the module.

#include <windows.h>

#include "threads/win32/process_end.h"

// Frees the emergency memory pool for exceptions of the compiler's runtime, which would leak when
// the module is unloaded.
namespace __gnu_cxx {
void __freeres();
}

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID processEnding) {
  if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(instance);
  if (reason == DLL_PROCESS_DETACH) {
    radiashafts::processIsEnding = processEnding != nullptr;
    if (processEnding == nullptr) __gnu_cxx::__freeres();
  }
  return TRUE;
}
