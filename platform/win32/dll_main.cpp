// Where the system attaches and detaches the module.

#include <windows.h>

#include "platform/win32/process_end.h"

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID processEnds) {
  if (reason == DLL_PROCESS_ATTACH) DisableThreadLibraryCalls(instance);
  if (reason == DLL_PROCESS_DETACH) radiashafts::platform::processIsEnding = processEnds != nullptr;
  return TRUE;
}
