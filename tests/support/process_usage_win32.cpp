// Wine's own counters of a process's handles, memory and drawing objects answer nothing: here the
// things themselves are counted.

#include <windows.h>

#include <algorithm>
#include <cstdint>
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
  for (BOOL more = Thread32First(snapshot, &entry); more != FALSE;
       more = Thread32Next(snapshot, &entry)) {
    if (entry.th32OwnerProcessID == GetCurrentProcessId()) ++count;
  }
  CloseHandle(snapshot);
  return count;
}

// -1 where the system does not tell.
int handles() {
  struct Entry {
    void* object;
    std::uintptr_t process, handle;
    std::uint32_t access;
    std::uint16_t creator, type;
    std::uint32_t attributes, reserved;
  };
  struct Table {
    std::uintptr_t count, reserved;
    Entry entries[1];
  };
  constexpr auto extendedHandleInformation = static_cast<SYSTEM_INFORMATION_CLASS>(64);
  constexpr NTSTATUS tooSmall = static_cast<NTSTATUS>(0xC0000004);
  std::vector<std::uintptr_t> memory(1U << 16);
  NTSTATUS status = 0;
  while ((status = NtQuerySystemInformation(extendedHandleInformation, memory.data(),
                                            static_cast<ULONG>(memory.size() * sizeof memory[0]),
                                            nullptr)) == tooSmall) {
    memory.resize(memory.size() * 2);
  }
  if (status != 0) return -1;
  const auto* table = reinterpret_cast<const Table*>(memory.data());
  return static_cast<int>(
      std::count_if(table->entries, table->entries + table->count,
                    [](const Entry& entry) { return entry.process == GetCurrentProcessId(); }));
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

BOOL CALLBACK countWindow(HWND window, LPARAM count) {
  DWORD process = 0;
  GetWindowThreadProcessId(window, &process);
  if (process == GetCurrentProcessId()) ++*reinterpret_cast<int*>(count);
  return TRUE;
}

BOOL CALLBACK countWithChildren(HWND window, LPARAM count) {
  EnumChildWindows(window, countWindow, count);
  return countWindow(window, count);
}

// Icons and cursors, which are not windows, hold drawing objects.
int windows() {
  int count = 0;
  EnumWindows(countWithChildren, reinterpret_cast<LPARAM>(&count));
  return count;
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
             << usage.drawingObjects << " drawing objects, " << usage.windows << " windows, "
             << usage.memory << " bytes";
}

// The windows come first: the first look at them takes handles of its own.
ProcessUsage processUsage() {
  ProcessUsage usage;
  usage.windows = windows();
  usage.drawingObjects = drawingObjects();
  usage.threads = threads();
  usage.handles = handles();
  usage.memory = privateMemory();
  return usage;
}

}  // namespace radiashafts::test
