// Hosts that do what a filter does not expect: floating-point states of their own, calls from two
// threads at once, calls from their own callbacks.

#include <atomic>
#include <thread>

#include <gtest/gtest.h>
#include <xmmintrin.h>

#include "standin/stand_in_host.h"
#include "tests/support/test_pictures.h"

extern "C" void ENTRYPOINT(std::int16_t, void*, std::intptr_t*, std::int16_t*);

namespace radiashafts::test {
namespace {

struct FloatingPoint {
  std::uint32_t mxcsr;
  std::uint16_t x87;
  bool operator==(const FloatingPoint&) const = default;
};

FloatingPoint floatingPoint() {
  FloatingPoint state{_mm_getcsr(), 0};
  asm volatile("fnstcw %0" : "=m"(state.x87));
  return state;
}

void setFloatingPoint(const FloatingPoint& state) {
  _mm_setcsr(state.mxcsr);
  asm volatile("fldcw %0" ::"m"(state.x87));
}

// The thread's own state, back at the end of the test.
struct CalmEnd {
  const FloatingPoint calm = floatingPoint();
  ~CalmEnd() { setFloatingPoint(calm); }
};

TEST(HostileHost, FindsItsFloatingPointStateAgainAndTheSamePicture) {
  constexpr FloatingPoint hosts[] = {
      {0x1F80 & ~0x0680, 0x37F & ~0x0D},  // invalid, zero divide, overflow
      {0x1F80 | 0x2000, 0x77F},
      {0x1F80 | 0x4000, 0xB7F},  // down, up
      {0x1F80 | 0x6000, 0xF7F},
      {0x1F80 | 0x8040, 0x27F},  // to zero; flush, short x87
      {0x60C0 | (0x1F80 & ~0x0680), 0x07F & ~0x0D}};
  const CalmEnd end;
  for (int configuration = 1; configuration <= 18; ++configuration) {
    Random random(static_cast<unsigned>(configuration));
    const standin::Picture input = randomPicture(random, configuration, 21, 18);
    const standin::Script script{{hostapi::fourCharacterCode("MODE"), configuration % 2 + 1},
                                 {hostapi::fourCharacterCode("SELS"), configuration % 4 / 2.0}};
    standin::StandInHost host(input, nullptr);
    standin::Picture expected;
    ASSERT_EQ(host.run(ENTRYPOINT, script, expected).status, 0);
    for (const FloatingPoint& hostState : hosts) {
      SCOPED_TRACE(std::to_string(configuration) + ", MXCSR " + std::to_string(hostState.mxcsr));
      host.onProgress = [&](int, int) { setFloatingPoint(hostState); };
      setFloatingPoint(hostState);
      standin::Picture output;
      const int status = host.run(ENTRYPOINT, script, output).status;
      const FloatingPoint after = floatingPoint();
      setFloatingPoint(end.calm);
      EXPECT_EQ(status, 0);
      EXPECT_EQ(after, hostState);
      EXPECT_EQ(output.bytes, expected.bytes);
    }
  }
}

// A grey picture that is filtered in place, without scripts to read: the interface stays shut.
struct PlainHost {
  PlainHost() {
    record.progressProc = [](int, int) {};
    record.advanceState = [] { return hostapi::OSErr{0}; };
    record.imageSize = {16, 16};
    record.planes = record.inNonLayerPlanes = record.imageMode = 1;
    record.inData = record.outData = picture.data();
    record.inRowBytes = record.outRowBytes = 16;
  }
  int call(int selector) {
    std::int16_t result = 99;
    ENTRYPOINT(static_cast<std::int16_t>(selector), &record, nullptr, &result);
    return result;
  }
  std::vector<std::uint8_t> picture = std::vector<std::uint8_t>(256, 100);
  hostapi::FilterRecord record{};
};

TEST(HostileHost, ThatComesBackWhileTheFilterRunsIsRefused) {
  static int onThisThread;
  static int onAnother;
  PlainHost host;
  static hostapi::SPBasicSuite basic{};
  basic.AcquireSuite = [](const char*, std::int32_t, const void**) {
    PlainHost other;
    onThisThread = other.call(1);
    std::thread([&] { onAnother = other.call(1); }).join();
    return 0;
  };
  basic.ReleaseSuite = [](const char*, std::int32_t) { return 0; };
  host.record.sSPBasic = &basic;
  EXPECT_EQ(host.call(1), 0);
  EXPECT_EQ(onThisThread, -128);
  EXPECT_EQ(onAnother, -128);
  EXPECT_EQ(PlainHost().call(1), 0);
}

TEST(HostileHost, TwoThreadsThatEnterAtOnceGetAnAnswerEach) {
  std::atomic<int> ready{0}, accepted{0}, odd{0};
  const auto enter = [&] {
    PlainHost host;
    ++ready;
    while (ready < 2) std::this_thread::yield();
    for (int round = 0; round < 1000; ++round) {
      const int result = host.call(1 + round % 2);
      if (result == 0) ++accepted;
      if (result != 0 && result != -128) ++odd;
    }
  };
  std::thread other(enter);
  enter();
  other.join();
  EXPECT_GT(accepted, 0);
  EXPECT_EQ(odd, 0);
}

}  // namespace
}  // namespace radiashafts::test
