// What code built with checked returns asks of its runtime. The compiler's own library would load
// the system's random numbers, a module of its own, at every attach of ours.

#include <windows.h>

#include <cstdint>

extern "C" {

std::uintptr_t __stack_chk_guard = 0x2B992DDFA2320000;

// A return address was overwritten: nothing can be trusted any more.
[[noreturn]] void __stack_chk_fail() {
  constexpr unsigned stackCookieCheckFailure = 2;
  asm volatile("int $0x29" ::"c"(stackCookieCheckFailure));  // the system's way to end at once
  __builtin_unreachable();
}

// Runs at load, before any function that is checked; the lowest byte of the guard stays 0, which
// ends texts.
[[gnu::constructor, gnu::no_stack_protector]] static void drawStackGuard() {
  FILETIME time;
  GetSystemTimeAsFileTime(&time);
  LARGE_INTEGER counter;
  QueryPerformanceCounter(&counter);
  const std::uintptr_t place = reinterpret_cast<std::uintptr_t>(&time);
  const std::uint64_t sum = (std::uint64_t{time.dwLowDateTime} << 32) ^ time.dwHighDateTime ^
                            static_cast<std::uint64_t>(counter.QuadPart) ^ place ^
                            (std::uint64_t{GetCurrentThreadId()} << 16) ^ GetCurrentProcessId();
  __stack_chk_guard = (sum * 0x9E3779B97F4A7C15) & ~std::uintptr_t{0xFF};
}
}
