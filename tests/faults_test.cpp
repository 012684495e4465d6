// Runs in which one thing fails, or everything from one thing on: memory on any thread, or a
// service of the host; and runs that the user aborts. A loop counts up until a run passes
// untouched, so that no list of places is kept by hand.

#include <functional>

#include <gtest/gtest.h>

#include "diagnostics/debug_log.h"
#include "platform/pump.h"
#include "standin/stand_in_host.h"
#include "tests/support/failing_memory.h"
#include "tests/support/fake_interface.h"
#include "tests/support/long_test.h"
#include "tests/support/process_usage.h"
#include "tests/support/test_folder.h"
#include "tests/support/test_pictures.h"

extern "C" void ENTRYPOINT(std::int16_t, void*, std::intptr_t*, std::int16_t*);

namespace radiashafts {
namespace {

int looks = 0;        // for messages, while a preview renders
int closingLook = 0;  // the look that finds the interface closed; 0: none does
bool closed = false;

}  // namespace

// In place of the module's own.
std::unique_ptr<pfPreview> MakePreview() {
  closed = false;
  return std::make_unique<test::LookingPreview>(std::vector<int>{0, 1, -1}, [] { return !closed; });
}
void ShowAbout(const std::string&) {}

bool platform::pumpPendingMessages() {
  if (++looks == closingLook) closed = true;
  return !closed;
}

namespace test {
namespace {

struct Scenario {
  int configuration;
  int mode;
  bool preview;
  bool suites;
  bool log = false;  // for which workers allocate
};

// What fails in a run.
struct Failure {
  MemoryFault memory{};
  standin::Fault service{};
  int abortAtProgress = 0;
  int closingLook = 0;
};

// The module's entry, in which memory fails on start.
MemoryFault memoryFault;
bool memoryFailed = false;
void failingEntry(std::int16_t selector, void* block, std::intptr_t* data, std::int16_t* result) {
  if (selector != hostapi::selectorStart) return ENTRYPOINT(selector, block, data, result);
  const FailingMemory memory(memoryFault);
  ENTRYPOINT(selector, block, data, result);
  memoryFailed = memory.hasFailed();
}

class FaultyRun {
 public:
  explicit FaultyRun(const Scenario& scenario)
      : input_(randomPicture(random_, scenario.configuration, 48, 40)),
        mask_(randomMask(random_, 48, 40)),
        preview_(scenario.preview) {
    static const TestFolder folder;
    if (scenario.log) DebugLog::Instance().SetLogFile(folder.path("log.txt"));
    judge::Values values = randomValues(random_);
    values.mode = scenario.mode;
    values.rayLength = 0.7;
    script_ = scriptOf(values);
    traits_.suites = scenario.suites;
    traits_.selectedRect = hostapi::Rect{3, 5, 20, 30};
    if (preview_) traits_.playInfo = hostapi::playDisplay;
    EXPECT_EQ(run({}), 0);
    expected_ = output_;
  }

  // The status of a run, in which whatever fails leaves nothing behind.
  int run(const Failure& failure) {
    standin::StandInHost host(input_, &mask_, traits_);
    host.faults.fault = failure.service;
    host.faults.abortAtProgress = failure.abortAtProgress;
    host.onProgress = [this](int, int) { ++progressCalls_; };
    progressCalls_ = looks = 0;
    closed = false;
    closingLook = failure.closingLook;
    output_ = input_;
    memoryFault = failure.memory;
    const standin::RunResult result = host.run(failingEntry, script_, output_);
    EXPECT_TRUE(result.requestsEnded);
    EXPECT_EQ(result.filterRect.right, 30);
    EXPECT_TRUE(result.guardsIntact);
    EXPECT_EQ(result.leaked, 0);
    if (result.status == 0 && !expected_.bytes.empty()) {
      EXPECT_EQ(output_.bytes, expected_.bytes);
    }
    return result.status;
  }

  int progressCalls() const { return progressCalls_; }

 private:
  Random random_{21};
  standin::Picture input_, output_, expected_;
  standin::Mask mask_;
  standin::Script script_;
  standin::HostTraits traits_;
  bool preview_;
  int progressCalls_ = 0;
};

class Faults : public testing::TestWithParam<Scenario> {
 protected:
  // Runs with the failure at 1, 2, 3 ... until one passes untouched; one that ends early is
  // followed by one that nothing happens to. Returns how many were touched.
  int countUp(const std::function<Failure(int at)>& failureAt, int expectedStatus,
              const std::function<bool()>& touched) {
    for (int at = 1;; ++at) {
      SCOPED_TRACE(at);
      const int status = run_.run(failureAt(at));
      if (!touched()) {
        EXPECT_EQ(status, 0);
        return at - 1;
      }
      EXPECT_TRUE(status == expectedStatus || status == 0) << status;
      if (HasFailure() || (status != 0 && run_.run({}) != 0)) return ADD_FAILURE(), at;
    }
  }

  FaultyRun run_{GetParam()};
};

TEST_P(Faults, OfMemoryEndTheRunAndNothingElse) {
  for (const bool onWorkers : {false, true}) {
    for (const bool onward : {false, true}) {
      SCOPED_TRACE(std::string(onWorkers ? "workers" : "caller") + (onward ? ", onward" : ""));
      const int touched = countUp(
          [&](int at) {
            return Failure{.memory = {onWorkers, at, onward}};
          },
          hostapi::memoryFullError, [] { return memoryFailed; });
      if (!onWorkers) {
        EXPECT_GT(touched, 4);
      }
    }
  }
}

TEST_P(Faults, OfTheHostsServicesEndTheRunOrNothing) {
  using standin::Service;
  const std::pair<Service, int> services[] = {{Service::buffers, hostapi::memoryFullError},
                                              {Service::handles, 0},
                                              {Service::advanceState, standin::advanceStateError},
                                              {Service::descriptors, 0},
                                              {Service::suites, 0}};
  for (const auto& [service, status] : services) {
    for (const bool onward : {false, true}) {
      SCOPED_TRACE(std::to_string(static_cast<int>(service)) + (onward ? ", onward" : ""));
      const int touched = countUp(
          [&, which = service](int at) {
            return Failure{.service = {which, at, onward}};
          },
          status, [] { return standin::faultShown(); });
      if (GetParam().suites) {
        EXPECT_GT(touched, 0);
      }
    }
  }
}

// How many reports come from the calling thread depends on how the rows are shared out.
TEST_P(Faults, AnAbortEndsTheRunAtOnce) {
  int aborted = 0;
  for (int at = 1; at <= 150; ++at) {
    const int status = run_.run({.abortAtProgress = at});
    ASSERT_TRUE(status == 0 || status == hostapi::userCanceledError) << status;
    aborted += status == 0 ? 0 : 1;
    ASSERT_LE(run_.progressCalls(), status == 0 ? at : at + 1);  // the last report comes too late
  }
  EXPECT_GT(aborted, 0);
  if (GetParam().preview) {
    const auto closingAt = [](int look) { return Failure{.closingLook = look}; };
    EXPECT_GT(countUp(closingAt, hostapi::userCanceledError, [] { return closed; }), 0);
  }
}

INSTANTIATE_TEST_SUITE_P(Runs, Faults,
                         testing::Values(Scenario{18, 1, false, true, true},
                                         Scenario{3, 2, false, false}, Scenario{15, 1, true, true},
                                         Scenario{10, 2, true, false}));

// A host has procs for handles always: without them nobody can give back those of this host.
void randomRun(Random& random) {
  const auto oneOf = [&random](unsigned number) { return random() % number == 0; };
  const auto side = [&random] { return static_cast<int>(random() % 90) + 1; };
  const int configuration = static_cast<int>(random() % 18) + 1;
  const standin::Picture input = randomPicture(random, configuration, side(), side());
  const standin::Mask mask = randomMask(random, input.width, input.height);
  judge::Values values = randomValues(random);
  values.mode = oneOf(2) ? 1 : 2;
  values.selectionShow = oneOf(8) ? 2 : 1;
  standin::HostTraits traits;
  traits.suites = !oneOf(4);
  traits.sampling = !oneOf(4);
  traits.descriptors = !oneOf(4);
  traits.playInfo = oneOf(4) ? hostapi::playDisplay : hostapi::playDontDisplay;
  traits.inputPadding = static_cast<int>(random() % 8);
  standin::StandInHost host(input, oneOf(2) ? &mask : nullptr, traits);
  host.faults.abortAtProgress = oneOf(5) ? static_cast<int>(random() % 200) + 1 : 0;
  looks = 0;
  closed = false;
  closingLook = oneOf(9) ? 1 : 0;
  standin::Picture output;
  const standin::RunResult result = host.run(ENTRYPOINT, scriptOf(values), output);
  const bool mayEnd = host.faults.abortAtProgress > 0 || closingLook == 1;
  EXPECT_TRUE(result.status == 0 || (mayEnd && result.status == -128)) << result.status;
  EXPECT_EQ(result.leaked, 0);
}

TEST(Soak, ManyRunsLeaveTheProcessAsTheFirstOnesDid) {
  Random random(testSeed());
  const int runs = roundsOf(2000);
  ProcessUsage before;
  for (int run = 0; run < runs; ++run) {
    randomRun(random);
    if (run == 50) before = processUsage();
    ASSERT_FALSE(HasFailure()) << run;
  }
  const ProcessUsage after = processUsage();
  EXPECT_LE(after.threads, before.threads);
  EXPECT_LE(after.handles, before.handles);
  if (!isSanitized) {  // sanitizers keep memory of their own
    EXPECT_LE(after.memory, before.memory + (std::size_t{1} << 20));
  }
}

}  // namespace
}  // namespace test
}  // namespace radiashafts
