// The thread pool and the log, on objects of their own.

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <new>
#include <optional>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>

#include "diagnostics/debug_log.h"
#include "tests/support/long_test.h"
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

TEST(ThreadPool, RunsEveryIterationOnceOnTheThreadsOfItsFirstInit) {
  for (const auto& [asked, threads] :
       {std::pair{-1, 1}, {0, 1}, {1, 1}, {2, 2}, {7, 7}, {64, 64}, {100, 64}}) {
    ThreadPool pool;
    pool.init(asked);
    pool.init(9);
    EXPECT_EQ(pool.threadCount(), threads);
    for (const int iterations : {0, 1, 5, 1000}) {
      std::vector<std::atomic<int>> runs(static_cast<std::size_t>(iterations));
      std::atomic<int> misplaced{0};
      const auto caller = std::this_thread::get_id();
      const auto work = [&, count = threads](std::int32_t i, std::int32_t slot) {
        ++runs[static_cast<std::size_t>(i)];
        if (slot >= count || (slot == 0) != (std::this_thread::get_id() == caller)) ++misplaced;
        return 0;
      };
      EXPECT_EQ(iterate(pool, iterations, work), 0);
      for (const auto& run : runs) ASSERT_EQ(run, 1) << threads << ' ' << iterations;
      EXPECT_EQ(misplaced, 0);
    }
  }
}

// The thread that fails may have taken one more iteration, which it drops.
TEST(ThreadPool, AStatusStopsItsOwnThreadAndOnlyTheCallersComesBack) {
  for (const auto& [threads, failing] :
       {std::pair{1, 0}, {2, 0}, {2, 1}, {7, 0}, {64, 0}, {64, 1}}) {
    ThreadPool pool;
    pool.init(threads);
    std::atomic<int> failed{0}, others{0};
    const auto work = [&, bad = failing](std::int32_t, std::int32_t slot) {
      if (slot == bad) return ++failed, -128;
      while (failed == 0) std::this_thread::yield();
      return ++others, 0;
    };
    EXPECT_EQ(iterate(pool, 200, work), failing == 0 ? -128 : 0);
    EXPECT_EQ(failed, 1);
    EXPECT_GE(others, threads == 1 ? 0 : 198);
    EXPECT_EQ(iterate(pool, 3, [](std::int32_t, std::int32_t) { return 0; }), 0);
  }
}

// Calls that are over before a worker is awake, and threads that all leave iterations behind.
TEST(ThreadPool, EveryCallComesBackHoweverLateItsWorkersAre) {
  for (const auto& [threads, calls] :
       {std::pair{2, 100'000}, {3, 100'000}, {8, 5'000}, {64, 5'000}}) {
    ThreadPool pool;
    pool.init(threads);
    // A worker that comes late for one call meets the next one only while they stay at hand.
    std::optional<ThreadPool::KeepRunning> keepRunning(pool);
    std::atomic<int> entered{0};
    const auto fail = [&](std::int32_t, std::int32_t) { return ++entered, -128; };
    for (int call = 0; call < test::roundsOf(calls); ++call) {
      if (call % 1000 == 999) keepRunning.emplace(pool);
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

TEST(ThreadPool, AnExceptionComesBackOnceAllThreadsAreDone) {
  for (const auto& [threads, throwing] : {std::pair{1, 0}, {2, 0}, {2, 1}, {7, 3}}) {
    ThreadPool pool;
    pool.init(threads);
    const ThreadPool::KeepRunning keepRunning(pool);
    for (int call = 0; call < 100; ++call) {
      std::atomic<int> inside{0};
      std::atomic<bool> thrown{false};
      const auto work = [&, bad = throwing](std::int32_t, std::int32_t slot) {
        ++inside;
        while (slot != bad && !thrown) std::this_thread::yield();
        if (slot == bad) thrown = true;
        --inside;
        if (slot == bad) throw std::bad_alloc();
        return 0;
      };
      EXPECT_THROW(iterate(pool, 200, work), std::bad_alloc);
      EXPECT_EQ(inside, 0);
      EXPECT_EQ(iterate(pool, 3, [](std::int32_t, std::int32_t) { return 0; }), 0);
    }
  }
}

TEST(DebugLog, AppendsWithFourBlanksALevelAndTriesAMissingDirectoryAgain) {
  const std::filesystem::path directory = testing::TempDir() + "radiashafts_debug_log";
  const std::string path = (directory / "log.txt").string();
  const auto text = [&path] { return (std::ostringstream() << std::ifstream(path).rdbuf()).str(); };
  std::filesystem::remove_all(directory);
  const std::string once = "one\n            two %s\nlines\n";
  for (const std::string& expected : {once, once + once}) {
    DebugLog log;
    log.SetLogFile(path);
    if (expected == once) log.LogMessage("lost without a word\n", severityError);
    std::filesystem::create_directory(directory);
    log.LogMessage("one\n", severityTrace);
    log.SetLogFile(path + "2");  // an open file stays open
    log.indentLevel = 3;
    log.LogMessage("two %s\nlines\n", severityWarning);
    log.LogMessage("below the threshold\n", 0);
    EXPECT_EQ(text(), expected);  // while it is open
  }
  std::filesystem::remove_all(directory);
}

}  // namespace
}  // namespace radiashafts
