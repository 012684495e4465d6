// Runtime support for -fstack-protector. The compiler's own library would load the system's random
// number DLL whenever this module is loaded.

#include <windows.h>

#include <cstdint>

extern "C" {

std::uintptr_t __stack_chk_guard = 0x2B992DDFA2320000;

// A return address was overwritten: nothing can be trusted any more.
[[noreturn]] void __stack_chk_fail() {
  constexpr unsigned stackCookieCheckFailure = 2;
  asm volatile("int $0x29" ::"c"(stackCookieCheckFailure));  // fail fast: ends the process
  __builtin_unreachable();
}

// Runs at load time, before any protected function. The lowest byte of the guard stays 0: it
// terminates a string that runs into the guard.
[[gnu::constructor, gnu::no_stack_protector]] static void initializeStackGuard() {
  FILETIME time;
  GetSystemTimeAsFileTime(&time);
  LARGE_INTEGER counter;
  QueryPerformanceCounter(&counter);
  const std::uintptr_t stackAddress = reinterpret_cast<std::uintptr_t>(&time);
  const std::uint64_t seed = (std::uint64_t{time.dwLowDateTime} << 32) ^ time.dwHighDateTime ^
                             static_cast<std::uint64_t>(counter.QuadPart) ^ stackAddress ^
                             (std::uint64_t{GetCurrentThreadId()} << 16) ^ GetCurrentProcessId();
  __stack_chk_guard = (seed * 0x9E3779B97F4A7C15) & ~std::uintptr_t{0xFF};
}
}
