// The thread pool and the log, on objects of their own.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

#include "diagnostics/debug_log.h"
#include "tests/support/long_test.h"
#include "tests/support/test_folder.h"
#include "threads/thread_pool.h"

namespace radiashafts {
namespace {

using Work = std::function<std::int32_t(std::int32_t iteration, std::int32_t slot)>;

std::int32_t iterate(ThreadPool& pool, std::int32_t iterations, Work work) {
  const auto call = [](void* context, std::int32_t i, std::int32_t, std::int32_t slot) {
    return (*static_cast<Work*>(context))(i, slot);
  };
  return pool.iterate(iterations, {&work, call});
}

// The thread that fails may have taken one more iteration, which it drops.
TEST(ThreadPool, AStatusStopsItsOwnThreadAndOnlyTheCallersComesBack) {
  for (const auto& [asked, failing] : {std::pair{-1, 0}, {2, 0}, {2, 1}, {100, 0}, {64, 1}}) {
    ThreadPool pool;
    pool.init(asked);
    pool.init(9);  // the first one counts
    const int threads = std::clamp(asked, 1, 64);
    EXPECT_EQ(pool.threadCount(), threads);
    std::atomic<int> failed{0}, others{0};
    const auto work = [&, bad = failing](std::int32_t, std::int32_t slot) {
      if (slot == bad) return ++failed, -128;
      while (failed == 0) std::this_thread::yield();
      return ++others, 0;
    };
    EXPECT_EQ(iterate(pool, 200, work), failing == 0 ? -128 : 0);
    EXPECT_EQ(failed, 1);
    EXPECT_GE(others, threads == 1 ? 0 : 198);
  }
}

// Calls that are over before a worker is awake, and threads that all leave iterations behind.
// Beside busy processes, where each worker waits its turn in every call, the time ends a round
// early.
TEST(ThreadPool, EveryCallComesBackHoweverLateItsWorkersAre) {
  for (const auto& [threads, calls] :
       {std::pair{2, 100'000}, {3, 100'000}, {8, 5'000}, {64, 5'000}}) {
    ThreadPool pool;
    pool.init(threads);
    // A worker that comes late for one call meets the next one only while they stay at hand.
    std::optional<ThreadPool::KeepRunning> attendance(pool);
    std::atomic<int> entered{0};
    const auto fail = [&](std::int32_t, std::int32_t) { return ++entered, -128; };
    const int rounds = test::isSanitized ? test::roundsOf(calls) : calls;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(15);
    for (int call = 0; call < rounds; ++call) {
      if (call % 64 == 63 && std::chrono::steady_clock::now() > end) break;
      if (call % 1000 == 999) attendance.emplace(pool);
      entered = 0;
      ASSERT_EQ(iterate(pool, 1000, fail), -128);
      const int inCall = entered;
      ASSERT_TRUE(inCall >= 1 && inCall <= threads) << call;
      // Between calls nobody is in a callback.
      if (call % 8 == 0) std::this_thread::yield();
      ASSERT_EQ(entered, inCall) << call;
    }
  }
}

TEST(DebugLog, AppendsWithFourBlanksALevelAndTriesAMissingDirectoryAgain) {
  const test::TestFolder folder;
  DebugLog log;
  log.SetLogFile(folder.path("later/log.txt"));
  log.LogMessage("lost without a word\n", severityError);
  std::filesystem::create_directory(folder.path("later"));
  folder.write("later/log.txt", "old\n");
  log.LogMessage("one\n", severityTrace);
  log.indentLevel = 3;
  log.LogMessage("two %s\nlines\n", severityWarning);
  log.LogMessage("below the threshold\n", 0);
  std::string text = folder.read("later/log.txt");
  std::erase(text, '\r');
  EXPECT_EQ(text, "old\none\n            two %s\nlines\n");
}

}  // namespace
}  // namespace radiashafts
