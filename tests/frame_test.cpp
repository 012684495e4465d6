// The frame as a host meets it: selectors, suites, the record and progress; and as it meets hosts
// with floating-point states of their own, with two threads and with calls from their callbacks.

#include <array>
#include <atomic>
#include <cstring>
#include <functional>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>
#include <xmmintrin.h>

#include "frame/pf_filter.h"
#include "standin/descriptors.h"
#include "standin/host_buffer_suite.h"
#include "tests/support/module_under_test.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

std::ostream& operator<<(std::ostream& out, const hostapi::Rect& r) {
  return out << r.left << ',' << r.top << ',' << r.right << ',' << r.bottom;
}

// A host by hand with a grey picture, which is its output too. It notes what the filter does. The
// last one that a thread has made is the one that the thread's filter talks to.
struct HandHost {
  HandHost() {
    basic.AcquireSuite = [](const char* name, std::int32_t version, const void** suite) {
      const bool buffer = std::strstr(name, "Buffer") != nullptr;
      *suite = buffer ? static_cast<const void*>(standin::bufferSuite()) : standin::handleSuite();
      current->calls << '+' << name << version;
      return 0;
    };
    basic.ReleaseSuite = [](const char* name, std::int32_t version) {
      current->calls << '-' << name << version;
      return 0;
    };
    record.progressProc = [](int done, int total) { current->progress = {done, total}; };
    record.abortProc = [] { return static_cast<hostapi::Boolean>(current->abort); };
    record.advanceState = [] { return current->asked = current->record, current->advanceResult; };
    record.sSPBasic = &basic;
    record.imageSize = {48, 8};
    record.planes = record.inNonLayerPlanes = record.imageMode = 1;
    record.inData = record.outData = picture.data();
    record.inRowBytes = record.outRowBytes = 8;
    record.inRect = record.outRect = record.maskRect = {1, 2, 3, 4};
    record.descriptorParameters = &descriptors;
    record.handleProcs = standin::handleProcs();
  }
  ~HandHost() {
    standin::disposeHandle(descriptors.descriptor);
    current = before;
  }

  int call(int selector, void* block = nullptr) {
    std::int16_t result = 99;
    moduleEntry()(static_cast<std::int16_t>(selector), block == nullptr ? &record : block, nullptr,
                  &result);
    return result;
  }

  static inline thread_local HandHost* current = nullptr;
  HandHost* const before = std::exchange(current, this);
  std::vector<std::uint8_t> picture = std::vector<std::uint8_t>(48 * 8, 100);
  hostapi::SPBasicSuite basic{};
  hostapi::PIDescriptorParameters descriptors{
      0, 0, 1, nullptr, standin::writeDescriptorProcs(), standin::readDescriptorProcs()};
  hostapi::FilterRecord record{}, asked{};
  bool abort = false;
  hostapi::OSErr advanceResult = 0;
  std::pair<int, int> progress;  // the last
  std::ostringstream calls;
};

struct ProbeFilter final : pfFilter {
  ProbeFilter() : pfFilter({}) {}
  using pfFilter::threadCountFor;
  std::int16_t SelectRenderTemplate(hostapi::FilterRecord*) override { return 0; }
  void ResetParameters(bool) override {}
  const char* GetFilterName() const override { return "probe"; }
};

TEST(Entry, AnswersEverySelectorBetweenAcquireAndRelease) {
  const std::pair<int, int> cases[] = {{2, 0}, {4, 0}, {6, -1}, {-1, -1}, {257, 0}, {256, 0}};
  for (const auto& [selector, answer] : cases) {
    HandHost host;
    hostapi::AboutRecord about{};
    about.sSPBasic = &host.basic;
    host.record.maxSpace = host.record.bufferSpace = 1234;
    const bool isAbout = selector % 256 == 0;  // the block is another one
    EXPECT_EQ(host.call(selector, isAbout ? &about : nullptr), answer);
    EXPECT_EQ(host.calls.str(),
              "+Photoshop Buffer Suite for Plug-ins1+Photoshop Handle Suite for Plug-ins2"
              "-Photoshop Buffer Suite for Plug-ins1-Photoshop Handle Suite for Plug-ins2")
        << selector;
    EXPECT_EQ(host.record.maxSpace + host.record.bufferSpace, selector == 2 ? 0 : 2468);
  }
}

// Without windows the interface is cancelled by itself.
TEST(StartSelector, EndsWithEmptyRectanglesWhateverHappens) {
  const std::pair<const char*, std::function<void(HandHost&)>> cases[] = {
      {"0 script asked reported painted", [](HandHost&) {}},
      {"-128 script", [](HandHost& h) { h.descriptors.playInfo = 1; }},
      {"1", [](HandHost& h) { h.record.advanceState = nullptr; }},
      {"1", [](HandHost& h) { h.record.progressProc = nullptr; }},
      {"-30 script asked", [](HandHost& h) { h.advanceResult = -30; }},
      {"-128 script asked reported", [](HandHost& h) { h.abort = true; }},
      {"0 script asked reported", [](HandHost& h) { h.record.imageMode = 4; }}};
  testing::internal::CaptureStderr();  // without windows the box is a line there
  for (const auto& [outcome, change] : cases) {
    HandHost host;
    change(host);
    std::ostringstream text;
    text << host.call(3);
    if (standin::scriptOf(host.descriptors.descriptor).size() == 27) text << " script";
    if (host.asked.planes != 0) text << " asked";
    if (host.progress == std::pair{0, 1}) text << " reported";
    if (host.picture != std::vector<std::uint8_t>(48 * 8, 100)) text << " painted";
    text << ' ' << host.record.inRect << ' ' << host.record.outRect << ' ' << host.record.maskRect;
    EXPECT_EQ(text.str(), outcome + std::string(" 0,0,0,0 0,0,0,0 0,0,0,0"));
  }
  EXPECT_NE(testing::internal::GetCapturedStderr().find("not supported by this host"),
            std::string::npos);
}

TEST(SetupFilterRecord, AsksForTheWholePictureReducedByTheFactor) {
  const struct {
    unsigned factor;
    int mask;  // 1 a selection, 2 a floating one
    const char* asked;
  } cases[] = {{0, 0, "0,0,90,50 2,1,4,3 rate 11 auto 1"},
               {1, 1, "0,0,90,50 0,0,90,50 rate 11 auto 0"},
               {3, 2, "0,0,30,16 0,0,30,16 rate 33 auto 1"}};
  for (const auto& c : cases) {
    HandHost host;
    hostapi::FilterRecord& r = host.record;
    r.imageSize = {50, 90};
    r.planes = 5;
    r.inLoPlane = r.outLoPlane = 2;
    r.haveMask = c.mask != 0;
    r.isFloating = c.mask == 2;
    r.autoMask = 1;
    host.advanceResult = -7;
    EXPECT_EQ(ProbeFilter().SetupFilterRecord(&r, c.factor), -7);
    r = host.asked;
    std::ostringstream text;
    text << r.inRect << ' ' << r.maskRect << " rate " << r.inputRate / 65536.0
         << r.maskRate / 65536.0 << " auto " << int{r.autoMask};
    EXPECT_EQ(text.str(), c.asked);
    EXPECT_EQ((std::array{r.inLoPlane, r.inHiPlane, r.outLoPlane, r.outHiPlane}),
              (std::array<std::int16_t, 4>{0, 4, 0, 4}));
    EXPECT_EQ(std::memcmp(&r.inRect, &r.outRect, sizeof r.inRect), 0);
  }
}

TEST(ThreadCounts, AreTheProcessorsOrASmallerRequestAndTheRequestItselfFrom64) {
  const auto count = ProbeFilter::threadCountFor;
  EXPECT_EQ((std::array{count(1, -1), count(4, 0), count(4, 3), count(63, 100), count(64, -1)}),
            (std::array{1, 4, 3, 63, -1}));
}

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

// Restores the thread's state at the end of the test.
struct FloatingPointRestorer {
  const FloatingPoint before = floatingPoint();
  ~FloatingPointRestorer() { setFloatingPoint(before); }
};

TEST(HostileHost, FindsItsFloatingPointStateAgainAndTheSamePicture) {
  constexpr FloatingPoint hosts[] = {
      {0x1F80 & ~0x0680, 0x37F & ~0x0D},  // invalid, zero divide, overflow
      {0x1F80 | 0x2000, 0x77F},
      {0x1F80 | 0x4000, 0xB7F},  // down, up
      {0x1F80 | 0x6000, 0xF7F},
      {0x1F80 | 0x8040, 0x27F},  // to zero; flush, short x87
      {0x60C0 | (0x1F80 & ~0x0680), 0x07F & ~0x0D}};
  const FloatingPointRestorer restorer;
  for (int configuration = 1; configuration <= 18; ++configuration) {
    Random random(static_cast<unsigned>(configuration));
    const standin::Picture input = randomPicture(random, configuration, 21, 18);
    const standin::Script script{{hostapi::fourCharacterCode("MODE"), configuration % 2 + 1},
                                 {hostapi::fourCharacterCode("SELS"), configuration % 4 / 2.0}};
    standin::StandInHost host(input, nullptr);
    standin::Picture expected;
    ASSERT_EQ(host.run(moduleEntry(), script, expected).status, 0);
    for (const FloatingPoint& hostState : hosts) {
      SCOPED_TRACE(std::to_string(configuration) + ", MXCSR " + std::to_string(hostState.mxcsr));
      host.onProgress = [&](int, int) { setFloatingPoint(hostState); };
      setFloatingPoint(hostState);
      standin::Picture output;
      const int status = host.run(moduleEntry(), script, output).status;
      const FloatingPoint after = floatingPoint();
      setFloatingPoint(restorer.before);
      EXPECT_EQ(status, 0);
      EXPECT_EQ(after, hostState);
      EXPECT_EQ(output.bytes, expected.bytes);
    }
  }
}

TEST(HostileHost, ThatComesBackWhileTheFilterRunsIsRefused) {
  static int onThisThread;
  static int onAnother;
  HandHost host;
  host.record.advanceState = [] {
    HandHost other;
    onThisThread = other.call(1);
    std::thread([&] { onAnother = other.call(1); }).join();
    return hostapi::OSErr{0};
  };
  EXPECT_EQ(host.call(3), 0);
  EXPECT_EQ(onThisThread, -128);
  EXPECT_EQ(onAnother, -128);
  EXPECT_EQ(HandHost().call(1), 0);
}

TEST(HostileHost, TwoThreadsThatEnterAtOnceGetAnAnswerEach) {
  moduleEntry();  // loads it, which only one thread may do
  std::atomic<int> ready{0}, accepted{0}, odd{0};
  const auto enter = [&] {
    HandHost host;
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
