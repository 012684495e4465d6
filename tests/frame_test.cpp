// The frame: selectors, suites, the record, progress and memory as a host meets them.

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "frame/pf_filter.h"
#include "interface/live_preview.h"
#include "platform/tick.h"
#include "standin/descriptors.h"
#include "standin/host_buffer_suite.h"
#include "tests/support/module_under_test.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

using hostapi::Rect;
using Calls = std::vector<std::string>;

std::array<int, 4> sides(const Rect& r) {
  return {r.left, r.top, r.right, r.bottom};
}

// A host by hand, with a grey picture and a note of everything that the filter calls.
struct HandHost {
  static constexpr int width = 8;
  static constexpr int height = 48;

  HandHost() {
    current = this;
    for (std::size_t i = 0; i < input.size(); ++i) input[i] = static_cast<std::uint8_t>(i * 37);
    basic.AcquireSuite = [](const char* name, std::int32_t version, const void** suite) {
      current->suites.push_back("acquire " + (name + (" " + std::to_string(version))));
      const bool buffer = std::strstr(name, "Buffer") != nullptr;
      if (buffer && current->hasBufferSuite) *suite = standin::bufferSuite();
      if (!buffer && current->hasHandleSuite) *suite = standin::handleSuite();
      return buffer ? current->hasBufferSuite - 1 : current->hasHandleSuite - 1;
    };
    basic.ReleaseSuite = [](const char* name, std::int32_t version) {
      current->suites.push_back("release " + (name + (" " + std::to_string(version))));
      return std::int32_t{0};
    };
    record.progressProc = [](std::int32_t done, std::int32_t total) {
      current->progress.emplace_back(done, total);
    };
    record.abortProc = [] { return static_cast<hostapi::Boolean>(current->abort ? 1 : 0); };
    record.advanceState = [] {
      ++current->advances;
      current->atAdvance = current->record;
      return current->advanceResult;
    };
    record.sSPBasic = &basic;
    record.imageSize = {height, width};
    record.planes = record.inNonLayerPlanes = 1;
    record.imageMode = 1;
    record.depth = 8;
    record.inData = input.data();
    record.outData = output.data();
    record.inRowBytes = record.outRowBytes = width;
    record.inRect = record.outRect = record.maskRect = record.filterRect = {1, 2, 3, 4};
    descriptors.recordInfo = 1;
    descriptors.descriptor = standin::makeDescriptor({{hostapi::fourCharacterCode("BLND"), 1}});
    descriptors.readDescriptorProcs = standin::readDescriptorProcs();
    descriptors.writeDescriptorProcs = standin::writeDescriptorProcs();
    record.descriptorParameters = &descriptors;
    record.handleProcs = standin::handleProcs();
    standin::memoryState().allocations = 0;
    standin::memoryState().failAt = 0;
  }
  ~HandHost() {
    standin::disposeHandle(descriptors.descriptor);
    standin::memoryState().failAt = 0;
  }

  int call(std::int16_t selector, std::intptr_t* data = nullptr) {
    std::int16_t result = 99;
    moduleEntry()(selector, &record, data, &result);
    return result;
  }

  static inline HandHost* current = nullptr;
  std::array<std::uint8_t, width * height> input{};
  std::array<std::uint8_t, width * height> output{};
  hostapi::SPBasicSuite basic{};
  hostapi::PIDescriptorParameters descriptors{};
  hostapi::FilterRecord record{};
  hostapi::FilterRecord atAdvance{};
  bool hasBufferSuite = true;
  bool hasHandleSuite = true;
  bool abort = false;
  hostapi::OSErr advanceResult = 0;
  int advances = 0;
  std::vector<std::pair<int, int>> progress;
  Calls suites;
};

// A filter of the frame with a render of the test's own.
struct ProbeFilter final : pfFilter {
  ProbeFilter() : pfFilter({}) {}
  using pfFilter::threadCountFor;
  std::int16_t SelectRenderTemplate(hostapi::FilterRecord*) override { return render(); }
  void ResetParameters(bool) override {}
  const char* GetFilterName() const override { return "probe"; }
  std::function<std::int16_t()> render;
};

const Calls aroundASelector{"acquire Photoshop Buffer Suite for Plug-ins 1",
                            "acquire Photoshop Handle Suite for Plug-ins 2",
                            "release Photoshop Buffer Suite for Plug-ins 1",
                            "release Photoshop Handle Suite for Plug-ins 2"};

TEST(Entry, AnswersEverySelectorBetweenAcquireAndRelease) {
  const struct {
    int selector;
    int answer;
  } cases[] = {{1, 0},  {2, 0},   {3, 0},    {4, 0},    {5, 0},   {6, -1},
               {7, -1}, {-1, -1}, {127, -1}, {255, -1}, {257, 0}, {259, 0}};
  for (const auto& c : cases) {
    SCOPED_TRACE(c.selector);
    HandHost host;
    host.record.maxSpace = host.record.bufferSpace = 12345;
    std::intptr_t data = 77;
    EXPECT_EQ(host.call(static_cast<std::int16_t>(c.selector), &data), c.answer);
    EXPECT_EQ(data, 77);
    EXPECT_EQ(host.suites, aroundASelector);
    EXPECT_EQ(host.advances, c.selector == 3 || c.selector == 259 ? 1 : 0);
    EXPECT_EQ(host.record.maxSpace, c.selector == 2 ? 0 : 12345);
    EXPECT_EQ(host.record.bufferSpace, c.selector == 2 ? 0 : 12345);
    host.record.sSPBasic = nullptr;
    EXPECT_EQ(host.call(static_cast<std::int16_t>(c.selector)), c.answer);
    EXPECT_EQ(host.suites.size(), 4U);
  }
  for (const int selector : {0, 256, -256}) {  // the block is another one
    HandHost host;
    hostapi::AboutRecord about{};
    std::int16_t result = 99;
    moduleEntry()(static_cast<std::int16_t>(selector), &about, nullptr, &result);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(host.suites, Calls{});
    about.sSPBasic = &host.basic;
    moduleEntry()(static_cast<std::int16_t>(selector), &about, nullptr, &result);
    EXPECT_EQ(host.suites, aroundASelector);
  }
}

TEST(StartSelector, EndsWithEmptyRectanglesWhateverHappens) {
  enum Reached { nothing, script, request, render };
  const struct {
    const char* name;
    int status;
    Reached reached;
    std::function<void(HandHost&)> change;
  } cases[] = {
      {"as it is", 0, render, [](HandHost&) {}},
      {"silent", 0, render, [](HandHost& h) { h.descriptors.playInfo = 2; }},
      {"no abort proc", 0, render, [](HandHost& h) { h.record.abortProc = nullptr; }},
      {"no advanceState", 1, nothing, [](HandHost& h) { h.record.advanceState = nullptr; }},
      {"no progress", 1, nothing, [](HandHost& h) { h.record.progressProc = nullptr; }},
      {"dialog wanted", -128, script, [](HandHost& h) { h.descriptors.playInfo = 1; }},
      {"host error", -30, request, [](HandHost& h) { h.advanceResult = -30; }},
      {"user abort", -128, render, [](HandHost& h) { h.abort = true; }},
      {"no memory", -108, render, [](HandHost&) { standin::memoryState().failAt = 1; }},
      {"mode not treated", 0, render, [](HandHost& h) { h.record.imageMode = 4; }},
  };
  for (const auto& c : cases) {
    SCOPED_TRACE(c.name);
    HandHost host;
    c.change(host);
    const int liveBefore = standin::memoryState().live;
    EXPECT_EQ(host.call(3), c.status);
    for (const Rect* rect : {&host.record.inRect, &host.record.outRect, &host.record.maskRect}) {
      EXPECT_EQ(sides(*rect), (std::array<int, 4>{}));
    }
    // Without the procs the script is neither read nor written; a Cancel still writes it.
    const Script handedBack = standin::scriptOf(host.descriptors.descriptor);
    EXPECT_EQ(handedBack.size(), c.reached >= script ? 27U : 1U);
    EXPECT_EQ(host.descriptors.recordInfo, c.reached >= script ? 0 : 1);
    EXPECT_EQ(host.advances, c.reached >= request ? 1 : 0);
    if (c.reached == render) {
      ASSERT_FALSE(host.progress.empty());
      EXPECT_EQ(host.progress.back(), (std::pair{0, 1}));
    } else {
      EXPECT_TRUE(host.progress.empty());
    }
    const bool written =
        std::any_of(host.output.begin(), host.output.end(), [](int b) { return b; });
    if (c.status == 0) EXPECT_EQ(written, host.record.imageMode == 1);
    if (c.reached < render) EXPECT_FALSE(written);
    EXPECT_EQ(standin::memoryState().live, liveBefore);
  }
  HandHost host;
  host.record.descriptorParameters = nullptr;  // as on a menu run, the interface is to open
  EXPECT_EQ(host.call(3), -128);
}

TEST(StartSelector, KeepsItsValuesForTheNextRunAndHoldsThemInTheirLimits) {
  Random random(4);
  const standin::Picture input = randomPicture(random, 13, 5, 6);
  const auto value = [](const standin::Script& script, const char(&key)[5]) {
    for (const auto& [k, v] : script) {
      if (k == hostapi::fourCharacterCode(key)) return std::get<double>(v);
    }
    return -99.0;
  };
  const auto put = [](const char(&key)[5], standin::ScriptValue v) {
    return standin::Script::value_type{hostapi::fourCharacterCode(key), v};
  };
  const ModuleRun first = runModule(
      input, nullptr,
      {put("INTE", 7.5), put("RALE", 1.5), put("RADI", -1.0), put("ORIX", 1.4), put("MODE", 2)});
  const ModuleRun second = runModule(input, nullptr, {});
  EXPECT_EQ(value(second.result.script, "INTE"), 7.5);
  EXPECT_EQ(value(second.result.script, "RALE"), 1.0);
  EXPECT_EQ(value(second.result.script, "RADI"), 0.0);
  EXPECT_EQ(value(second.result.script, "ORIX"), 1.4);
  EXPECT_EQ(second.output.bytes, first.output.bytes);
  // The script is written before the limits are applied again.
  EXPECT_EQ(value(first.result.script, "RALE"), 1.5);
}

TEST(Render, AnAllocationThatFailsGivesOutOfMemoryAndLeaksNothing) {
  Random random(8);
  for (const int mode : {1, 2}) {
    const standin::Picture input = randomPicture(random, 3, 15, 12);
    const standin::Mask mask = randomMask(random, 15, 12);
    judge::Values values = randomValues(random);
    values.mode = mode;
    int failAt = 1;
    for (; failAt < 50; ++failAt) {
      standin::HostFaults faults;
      faults.failAllocation = failAt;
      const ModuleRun run = runModule(input, &mask, scriptOf(values), {}, faults);
      ASSERT_EQ(run.result.leakedBuffers, 0) << failAt;
      if (run.result.status == 0) break;
      ASSERT_EQ(run.result.status, -108) << failAt;
    }
    EXPECT_GT(failAt, 1);
    EXPECT_LT(failAt, 50);
  }
}

TEST(Render, IsTheSameFromTheHeapWhichServesWhereASuiteIsMissing) {
  Random random(6);
  const standin::Picture input = randomPicture(random, 14, 13, 17);
  const standin::Script script = scriptOf(randomValues(random));
  const ModuleRun fromSuite = runModule(input, nullptr, script);
  EXPECT_GT(standin::memoryState().allocations, 0);
  standin::HostTraits traits;
  traits.suites = false;  // the module may still hold the Handle Suite of the run before
  const ModuleRun fromHeap = runModule(input, nullptr, script, traits);
  EXPECT_EQ(fromHeap.result.status, 0);
  EXPECT_EQ(standin::memoryState().allocations, 0);
  EXPECT_EQ(fromHeap.output.bytes, fromSuite.output.bytes);

  for (const bool buffer : {false, true}) {
    for (const bool handle : {false, true}) {
      HandHost host;
      host.hasBufferSuite = buffer;
      host.hasHandleSuite = handle;
      const int liveBefore = standin::memoryState().live;
      ProbeFilter filter;
      filter.render = [&filter, liveBefore, suite = buffer && handle] {
        void* block = filter.Allocate(100);
        std::memset(block, 1, 100);
        EXPECT_EQ(standin::memoryState().live, liveBefore + (suite ? 1 : 0));
        filter.Free(block);
        filter.Free(nullptr);
        return std::int16_t{0};
      };
      EXPECT_EQ(filter.Dispatch(3, &host.record), 0);
      EXPECT_EQ(standin::memoryState().live, liveBefore);
    }
  }
}

TEST(Render, AnEmptyPictureIsNoFailure) {
  Random random(2);
  for (const auto& [width, height] : {std::pair{0, 0}, {0, 5}, {5, 0}}) {
    const ModuleRun run = runModule(randomPicture(random, 13, width, height), nullptr, {});
    EXPECT_EQ(run.result.status, 0) << width << ' ' << height;
    EXPECT_EQ(run.result.progressCalls, 1);
  }
}

TEST(SetupFilterRecord, AsksForTheWholePictureReducedByTheFactor) {
  const struct {
    unsigned factor;
    int width, height;
    int right, bottom;
    int rate;
  } cases[] = {{0, 100, 50, 100, 50, 0x10000}, {1, 100, 50, 100, 50, 0x10000},
               {3, 100, 50, 33, 16, 0x30000},  {2, 7, 1, 3, 0, 0x20000},
               {9, 8, 8, 0, 0, 0x90000},       {2, 32767, 32767, 16383, 16383, 0x20000}};
  for (const auto& c : cases) {
    for (const bool masked : {false, true}) {
      for (const bool floating : {false, true}) {
        HandHost host;
        ProbeFilter filter;
        host.record.imageSize = {static_cast<std::int16_t>(c.height),
                                 static_cast<std::int16_t>(c.width)};
        host.record.planes = 5;
        host.record.inLoPlane = host.record.outLoPlane = 2;
        host.record.haveMask = masked;
        host.record.isFloating = floating;
        host.record.autoMask = host.record.wantsAbsolute = 1;
        host.record.maskPadding = 9;
        host.advanceResult = -7;
        EXPECT_EQ(filter.SetupFilterRecord(&host.record, c.factor), -7);
        const hostapi::FilterRecord& asked = host.atAdvance;
        const std::array<int, 4> reduced{0, 0, c.right, c.bottom};
        EXPECT_EQ(sides(asked.inRect), reduced);
        EXPECT_EQ(sides(asked.outRect), reduced);
        EXPECT_EQ(sides(asked.maskRect), masked ? reduced : sides({1, 2, 3, 4}));
        EXPECT_EQ(sides(asked.filterRect), (std::array<int, 4>{0, 0, c.width, c.height}));
        EXPECT_EQ(asked.inputRate, c.rate);
        EXPECT_EQ(asked.maskRate, c.rate);
        EXPECT_EQ((std::array<int, 4>{asked.inLoPlane, asked.inHiPlane, asked.outLoPlane,
                                      asked.outHiPlane}),
                  (std::array<int, 4>{0, 4, 0, 4}));
        EXPECT_EQ((std::array<int, 3>{asked.inputPadding, asked.outputPadding, asked.maskPadding}),
                  (std::array<int, 3>{255, 255, 0}));
        EXPECT_EQ(asked.autoMask, masked && !floating ? 0 : 1);
        EXPECT_EQ(asked.wantsAbsolute, 0);
      }
    }
  }
}

TEST(Progress, OnlyThreadZeroOfAFinalRenderMeetsTheHost) {
  HandHost host;
  host.abort = true;
  ProbeFilter filter;
  filter.render = [&filter] {
    EXPECT_EQ(filter.Progress(1, 9, 3), 0);
    EXPECT_TRUE(HandHost::current->progress.empty());
    EXPECT_EQ(filter.Progress(2, 9, 0), -128);
    return std::int16_t{-5};
  };
  EXPECT_EQ(filter.Dispatch(3, &host.record), -5);
  EXPECT_EQ(host.progress, (std::vector<std::pair<int, int>>{{2, 9}, {0, 1}}));
}

TEST(Progress, APreviewIsCutShortByAWantedRenderBehind200Milliseconds) {
  ProbeFilter filter;  // a preview does not touch the host at all
  for (const bool pending : {false, true}) {
    for (const bool live : {false, true}) {
      for (const std::uint32_t elapsed : {0U, 201U, 5000U}) {
        bRenderPending = pending;
        bLivePreview = live;
        nRenderStartTick = platform::tickCount() - elapsed;
        const bool cut = pending && live && elapsed > 200;
        for (const int thread : {0, 3}) {
          EXPECT_EQ(filter.Progress(1, 2, thread), cut ? -128 : 0) << elapsed;
        }
      }
    }
  }
  nRenderStartTick = 0;
  bRenderPending = false;
  bLivePreview = true;
}

TEST(ThreadCount, IsTheProcessorsOrTheSmallerRequestAndTheRequestItselfFrom64) {
  const struct {
    int processors, requested, count;
  } cases[] = {{1, -1, 1},     {4, 0, 4},     {4, 3, 3},     {4, 9, 4},
               {63, -1, 63},   {63, 100, 63}, {64, -1, -1},  {64, 5, 5},
               {64, 100, 100}, {128, -1, -1}, {128, 63, 63}, {128, 70, 70}};
  for (const auto& c : cases) {
    EXPECT_EQ(ProbeFilter::threadCountFor(c.processors, c.requested), c.count)
        << c.processors << ' ' << c.requested;
  }
}

}  // namespace
}  // namespace radiashafts::test
