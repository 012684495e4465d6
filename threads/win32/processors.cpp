#include "threads/processors.h"
#include <windows.h>

namespace radiashafts {

int processorCount() {
  SYSTEM_INFO info;
  GetSystemInfo(&info);
  return info.dwNumberOfProcessors > 0 ? static_cast<int>(info.dwNumberOfProcessors) : 1;
}

int currentProcessor() {
  return static_cast<int>(GetCurrentProcessorNumber());
}

// An affinity mask covers one processor group only, so a thread that may use several is not moved.
void leaveProcessor(int processor) {
  if (GetActiveProcessorGroupCount() > 1) return;
  DWORD_PTR ofProcess = 0;
  DWORD_PTR ofSystem = 0;
  if (GetProcessAffinityMask(GetCurrentProcess(), &ofProcess, &ofSystem) == 0) return;
  const DWORD_PTR others = ofProcess & ~(DWORD_PTR{1} << processor);
  const DWORD_PTR own = SetThreadAffinityMask(GetCurrentThread(), others);
  if (own != 0) SetThreadAffinityMask(GetCurrentThread(), own);
}

}  // namespace radiashafts
