// The frame: selectors, suites, the record, progress and memory as a host meets
// them.

#include <array>
#include <cstring>
#include <functional>
#include <sstream>

#include <gtest/gtest.h>

#include "frame/pf_filter.h"
#include "standin/descriptors.h"
#include "standin/host_buffer_suite.h"
#include "tests/support/closed_windows.h"
#include "tests/support/module_under_test.h"

namespace radiashafts::test {
namespace {

std::ostream& operator<<(std::ostream& out, const hostapi::Rect& r) {
  return out << r.left << ',' << r.top << ',' << r.right << ',' << r.bottom;
}

// A host by hand with a grey picture, which is its output too. It notes what
// the filter does.
struct HandHost {
  HandHost() {
    current = this;
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
  ~HandHost() { standin::disposeHandle(descriptors.descriptor); }

  int call(int selector, void* block) {
    std::int16_t result = 99;
    moduleEntry()(static_cast<std::int16_t>(selector), block, nullptr, &result);
    return result;
  }

  static inline HandHost* current = nullptr;
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
  const ClosedWindows user;
  const std::pair<int, int> cases[] = {{2, 0}, {4, 0}, {6, -1}, {-1, -1}, {257, 0}, {256, 0}};
  for (const auto& [selector, answer] : cases) {
    HandHost host;
    hostapi::AboutRecord about{};
    about.sSPBasic = &host.basic;
    host.record.maxSpace = host.record.bufferSpace = 1234;
    const bool isAbout = selector % 256 == 0;  // the block is another one
    EXPECT_EQ(host.call(selector, isAbout ? static_cast<void*>(&about) : &host.record), answer);
    EXPECT_EQ(host.calls.str(),
              "+Photoshop Buffer Suite for Plug-ins1+Photoshop Handle Suite for Plug-ins2"
              "-Photoshop Buffer Suite for Plug-ins1-Photoshop Handle Suite for Plug-ins2")
        << selector;
    EXPECT_EQ(host.record.maxSpace + host.record.bufferSpace, selector == 2 ? 0 : 2468);
  }
}

// In the module without windows an interface is cancelled by itself.
TEST(StartSelector, EndsWithEmptyRectanglesWhateverHappens) {
  const std::pair<const char*, std::function<void(HandHost&)>> cases[] = {
      {"0 script asked reported painted", [](HandHost&) {}},
      {"-128 script", [](HandHost& h) { h.descriptors.playInfo = 1; }},
      {"1", [](HandHost& h) { h.record.advanceState = nullptr; }},
      {"1", [](HandHost& h) { h.record.progressProc = nullptr; }},
      {"-30 script asked", [](HandHost& h) { h.advanceResult = -30; }},
      {"-128 script asked reported", [](HandHost& h) { h.abort = true; }},
      {"0 script asked reported", [](HandHost& h) { h.record.imageMode = 4; }}};
  ClosedWindows boxes;
  for (const auto& [outcome, change] : cases) {
    HandHost host;
    change(host);
    std::ostringstream text;
    text << host.call(3, &host.record);
    if (standin::scriptOf(host.descriptors.descriptor).size() == 27) text << " script";
    // In the module with windows the interface asks too, for its preview.
    if (host.asked.planes != 0 && host.descriptors.playInfo != 1) text << " asked";
    if (host.progress == std::pair{0, 1}) text << " reported";
    if (host.picture != std::vector<std::uint8_t>(48 * 8, 100)) text << " painted";
    text << ' ' << host.record.inRect << ' ' << host.record.outRect << ' ' << host.record.maskRect;
    EXPECT_EQ(text.str(), outcome + std::string(" 0,0,0,0 0,0,0,0 0,0,0,0"));
  }
  EXPECT_NE(boxes.texts().find("not supported by this host"), std::string::npos);
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

}  // namespace
}  // namespace radiashafts::test
