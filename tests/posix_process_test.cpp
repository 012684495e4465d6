// What this system does to processes and threads.

#include <cstdlib>

#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/wait.h>
#include <unistd.h>

#include "tests/support/module_under_test.h"
#include "tests/support/test_pictures.h"
#include "threads/thread_pool.h"

namespace radiashafts::test {
namespace {

// Makes stacks of new threads larger than the address space.
class NoThreads {
 public:
  NoThreads() {
    pthread_getattr_default_np(&before_);
    pthread_attr_t attributes;
    pthread_getattr_default_np(&attributes);
    pthread_attr_setstacksize(&attributes, std::size_t{1} << 48);
    pthread_setattr_default_np(&attributes);
    pthread_attr_destroy(&attributes);
  }
  ~NoThreads() {
    pthread_setattr_default_np(&before_);
    pthread_attr_destroy(&before_);
  }

 private:
  pthread_attr_t before_;
};

TEST(ThreadPool, DoesAllTheWorkOnTheCallersThreadWhereTheSystemGivesNoOther) {
  ThreadPool pool;
  const auto count = [&pool] {
    int runs = 0;
    const auto work = [](void* context, std::int32_t, std::int32_t, std::int32_t slot) {
      if (slot == 0) ++*static_cast<int*>(context);
      return 0;
    };
    EXPECT_EQ(pool.iterate(100, {&runs, work}), 0);
    return runs;
  };
  {
    const NoThreads none;
    pool.init(4);
    EXPECT_EQ(pool.threadCount(), 1);
    EXPECT_EQ(count(), 100);
  }
  pool.init(4);
  EXPECT_EQ(pool.threadCount(), 4);
  EXPECT_LE(count(), 100);
}

// A run makes threads, which a forked process does not have.
TEST(ForkedProcess, RendersAndEndsByItself) {
  Random random(3);
  const standin::Picture input = randomPicture(random, 18, 60, 50);
  const ModuleRun expected = runModule(input, nullptr, {});
  for (const bool renders : {false, true}) {
    const pid_t child = fork();
    if (child == 0) {
      alarm(120);
      std::exit(
          !renders || runModule(input, nullptr, {}).output.bytes == expected.output.bytes ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0) << renders;
  }
}

}  // namespace
}  // namespace radiashafts::test
