// The thread pool and the log, on objects of their own.

#include <atomic>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "diagnostics/debug_log.h"
#include "services/halvorsund_host.h"
#include "services/thread_pool.h"

namespace radiashafts {
namespace {

using Work = std::function<std::int32_t(std::int32_t, std::int32_t, std::int32_t)>;

IterationCallback callbackOf(Work& work) {
  return {&work, [](void* context, std::int32_t i, std::int32_t count, std::int32_t thread) {
            return (*static_cast<Work*>(context))(i, count, thread);
          }};
}

TEST(ThreadPool, RunsEveryIterationOnceEachSlotOnAThreadOfItsOwn) {
  for (const int threads : {1, 2, 7, 64}) {
    ThreadPool pool;
    ASSERT_TRUE(pool.init(threads));
    std::vector<std::thread::id> threadOf(64);
    threadOf[0] = std::this_thread::get_id();
    for (const int iterations : {0, 1, 5, 64, 1000}) {
      std::vector<std::atomic<int>> runs(static_cast<std::size_t>(iterations));
      std::atomic<int> misplaced{0};
      Work work = [&](std::int32_t i, std::int32_t count, std::int32_t slot) {
        ++runs[static_cast<std::size_t>(i)];
        if (slot < 0 || slot >= threads || count != iterations) return ++misplaced, 0;
        auto& own = threadOf[static_cast<std::size_t>(slot)];
        if (own == std::thread::id{}) own = std::this_thread::get_id();
        if (own != std::this_thread::get_id()) ++misplaced;
        return 0;
      };
      EXPECT_EQ(pool.iterate(iterations, callbackOf(work)), 0);
      for (const auto& count : runs) ASSERT_EQ(count, 1) << threads << ' ' << iterations;
      EXPECT_EQ(misplaced, 0);
    }
  }
}

// A thread that fails has taken one more iteration, which it drops.
TEST(ThreadPool, AStatusOfTheCallingThreadStopsItAloneAndComesBack) {
  for (const int threads : {1, 2, 7, 64}) {
    constexpr int iterations = 200;
    ThreadPool pool;
    ASSERT_TRUE(pool.init(threads));
    std::atomic<int> own{0}, others{0};
    Work work = [&](std::int32_t, std::int32_t, std::int32_t slot) {
      if (slot == 0) return ++own, own.notify_all(), -128;
      own.wait(0);
      return ++others, 0;
    };
    EXPECT_EQ(pool.iterate(iterations, callbackOf(work)), -128);
    EXPECT_EQ(own, 1);
    if (threads > 1) EXPECT_GE(others, iterations - 2);
    Work good = [](std::int32_t, std::int32_t, std::int32_t) { return 0; };
    EXPECT_EQ(pool.iterate(3, callbackOf(good)), 0);  // a status is of one call
  }
}

TEST(ThreadPool, AStatusOfAWorkerIsLost) {
  ThreadPool pool;
  ASSERT_TRUE(pool.init(2));
  std::atomic<int> own{0}, worker{0};
  Work work = [&](std::int32_t, std::int32_t, std::int32_t slot) {
    if (slot == 1) return ++worker, worker.notify_all(), 7;
    worker.wait(0);
    return ++own, 0;
  };
  EXPECT_EQ(pool.iterate(50, callbackOf(work)), 0);
  EXPECT_EQ(worker, 1);
  EXPECT_GE(own, 48);
}

TEST(ThreadPool, TheFirstInitHeldIn1To64IsTheOneThatCounts) {
  for (const auto& [asked, made] :
       {std::pair{-1, 1}, {0, 1}, {1, 1}, {5, 5}, {64, 64}, {100, 64}}) {
    ThreadPool pool;
    EXPECT_EQ(pool.threadCount(), 0);
    EXPECT_TRUE(pool.init(asked));
    EXPECT_EQ(pool.threadCount(), made) << asked;
    EXPECT_TRUE(pool.init(9));
    EXPECT_EQ(pool.threadCount(), made) << asked;
  }
}

TEST(HalvorsundHost, RunIterationsSharesWorkOverTheProcessorsThatItCounts) {
  HalvorsundHost host;
  std::int32_t count = 0;
  EXPECT_EQ(host.ThreadCount(&count, -1), 0);
  std::atomic<int> runs{0}, beyond{0};
  Work work = [&](std::int32_t, std::int32_t, std::int32_t slot) {
    if (slot >= (count > 0 ? count : ThreadPool::maximumSlots)) ++beyond;
    return ++runs, 0;
  };
  EXPECT_EQ(host.RunIterations(100, callbackOf(work)), 0);
  EXPECT_EQ(runs, 100);
  EXPECT_EQ(beyond, 0);
}

class DebugLogFile : public testing::Test {
 protected:
  DebugLogFile() { std::filesystem::remove_all(directory); }
  ~DebugLogFile() override { std::filesystem::remove_all(directory); }

  std::string path(const char* name = "log.txt") const { return (directory / name).string(); }
  std::string text(const char* name = "log.txt") const {
    std::ostringstream content;
    content << std::ifstream(path(name)).rdbuf();
    return content.str();
  }
  const std::filesystem::path directory =
      std::filesystem::path(testing::TempDir()) /
      ("radiashafts_" + std::string(testing::UnitTest::GetInstance()->current_test_info()->name()));
};

TEST_F(DebugLogFile, IsAppendedToWithFourBlanksALevelOnTheFirstLine) {
  std::filesystem::create_directories(directory);
  for (int process = 0; process < 2; ++process) {
    DebugLog log;
    log.LogMessage("before any output exists\n", severityError);
    log.SetLogFile(path());
    log.LogMessage("one\n", severityTrace);
    log.indentLevel = 3;
    log.LogMessage("two\nlines\n", severityWarning);
    EXPECT_TRUE(text().ends_with("one\n            two\nlines\n"));  // flushed at once
    log.indentLevel = -1;
    log.LogMessage("100% %s\n", severityError);
    log.LogMessage("below the threshold\n", 0);
  }
  const std::string once = "one\n            two\nlines\n100% %s\n";
  EXPECT_EQ(text(), once + once);
}

TEST_F(DebugLogFile, AMissingDirectoryIsSilentAndTriedAgain) {
  DebugLog log;
  log.SetLogFile(path());
  log.LogMessage("lost\n", severityError);
  EXPECT_FALSE(std::filesystem::exists(directory));
  std::filesystem::create_directories(directory);
  log.LogMessage("below the threshold\n", 0);  // opens the file all the same
  EXPECT_TRUE(std::filesystem::exists(path()));
  log.LogMessage("kept\n", severityTrace);
  log.SetLogFile(path("other.txt"));  // an open file stays open
  log.LogMessage("kept too\n", severityTrace);
  EXPECT_EQ(text(), "kept\nkept too\n");
  EXPECT_FALSE(std::filesystem::exists(path("other.txt")));
}

TEST(DebugLog, WritesToAConsoleWhereOneIsWanted) {
  testing::internal::CaptureStderr();
  DebugLog log;
  log.LogMessage("nowhere\n", severityError);
  log.SetConsoleWanted(true);
  log.indentLevel = 1;
  log.LogMessage("here\n", severityTrace);
  log.LogMessage("below the threshold\n", 0);
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "    here\n");
}

}  // namespace
}  // namespace radiashafts
