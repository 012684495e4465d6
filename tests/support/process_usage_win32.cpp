// Wine's own counters of a process's handles, memory and drawing objects answer nothing: here the
// things themselves are counted.

#include <windows.h>

#include <algorithm>
#include <ostream>
#include <vector>

#include <tlhelp32.h>
#include <winternl.h>

#include "tests/support/process_usage.h"

namespace radiashafts::test {
namespace {

int threads() {
  int count = 0;
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  while ((entry.th32ThreadID == 0 ? Thread32First : Thread32Next)(snapshot, &entry) != FALSE) {
    if (entry.th32OwnerProcessID == GetCurrentProcessId()) ++count;
  }
  CloseHandle(snapshot);
  return count;
}

// -1 where the system does not tell.
int handles() {
  struct Entry {
    void* object;
    std::uintptr_t process, handle, accessAndType, attributes;
  };
  constexpr auto extendedHandleInformation = static_cast<SYSTEM_INFORMATION_CLASS>(64);
  std::vector<std::uintptr_t> table(1U << 20);
  if (NtQuerySystemInformation(extendedHandleInformation, table.data(),
                               static_cast<ULONG>(table.size() * sizeof table[0]), nullptr) != 0) {
    return -1;
  }
  const auto* entries = reinterpret_cast<const Entry*>(&table[2]);  // behind their count
  return static_cast<int>(std::count_if(entries, entries + table[0], [](const Entry& entry) {
    return entry.process == GetCurrentProcessId();
  }));
}

// In the table that every process can read.
int drawingObjects() {
  struct Entry {
    std::uint64_t object;
    std::uint16_t process, count, unique;
    std::uint8_t type, flags;
    std::uint64_t user;
  };
  constexpr std::size_t tableInProcessBlock = 0xF8;
  PROCESS_BASIC_INFORMATION process{};
  NtQueryInformationProcess(GetCurrentProcess(), ProcessBasicInformation, &process, sizeof process,
                            nullptr);
  const auto* block = reinterpret_cast<const std::uint8_t*>(process.PebBaseAddress);
  const auto* table = *reinterpret_cast<const Entry* const*>(block + tableInProcessBlock);
  return static_cast<int>(
      std::count_if(table, table + 65536, [](const Entry& entry) { return entry.type != 0; }));
}

std::size_t privateMemory() {
  std::size_t sum = 0;
  MEMORY_BASIC_INFORMATION region{};
  for (const std::uint8_t* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0;
       at += region.RegionSize) {
    if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) sum += region.RegionSize;
  }
  return sum;
}

}  // namespace

std::ostream& operator<<(std::ostream& out, const ProcessUsage& usage) {
  return out << usage.threads << " threads, " << usage.handles << " handles, "
             << usage.drawingObjects << " drawing objects, " << usage.memory << " bytes";
}

ProcessUsage processUsage() {
  return {threads(), handles(), drawingObjects(), privateMemory()};
}

}  // namespace radiashafts::test
