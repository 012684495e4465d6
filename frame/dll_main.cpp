// Where the system attaches and detaches the module.

#include <windows.h>

#include "threads/win32/process_end.h"

// Gives back the memory that the compiler's runtime keeps for exceptions when there is none.
namespace __gnu_cxx {
void __freeres();
}

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(instance);
  if (reason == DLL_PROCESS_DETACH) {
    radiashafts::processIsEnding = processEnds != nullptr;
    if (processEnds == nullptr) __gnu_cxx::__freeres();
  }
  return TRUE;
}
