// Files as this system has them: the text of the user's store, rights, links, pipes, full disks and
// a process that ends in the midst of a change.

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "platform/user_store.h"
#include "platform/whole_file.h"
#include "tests/support/preset_set.h"
#include "tests/support/test_folder.h"

namespace radiashafts::test {
namespace {

namespace fs = std::filesystem;
using platform::ReplaceStep;
using platform::UserKey;

class UserStore : public testing::Test {
 protected:
  UserStore() { setenv("XDG_CONFIG_HOME", folder_.folder().c_str(), 1); }
  ~UserStore() override { unsetenv("XDG_CONFIG_HOME"); }
  void write(const std::string& content) const {
    fs::create_directory(folder_.path("radiashafts"));
    folder_.write("radiashafts/settings", content);
  }
  std::string content() const { return folder_.read("radiashafts/settings"); }

  const TestFolder folder_;
  PresetSet set_;
};

TEST_F(UserStore, IsATextThatKeepsWhatItDoesNotKnowAndReadsDamageAsAbsent) {
  const std::string noise("\0]\xff[A\n=\n = \n[\n[]\r\n", 18);
  const std::string before =
      noise + "# by hand\n[A]\nn = dword:\nm = dword:123456789\nlost line\n\n";
  write(before + "[B]\nOne = bytes:0\nFuture = qword:1\nTwo = bytes:0g");
  UserKey::createForWriting("A")->writeText("Two", "a\nb\\");
  UserKey::createForWriting("B")->writeNumber("One", 10);
  UserKey::createForWriting("C");
  EXPECT_EQ(content(), before.substr(0, before.size() - 1) + "Two = text:a\\nb\\\\\n\n[B]\n" +
                           "One = dword:0000000a\nFuture = qword:1\nTwo = bytes:0g\n\n[C]\n");
  EXPECT_EQ(UserKey::openForReading("A")->readText("Two"), "a\nb\\");
  std::uint8_t byte = 0;
  for (const char* name : {"n", "m", "Future", "Two", ""}) {
    for (const char* path : {"A", "B"}) {
      const auto key = UserKey::openForReading(path);
      EXPECT_FALSE(key->readNumber(name) || key->readBytes(name, &byte, 1)) << name;
    }
  }
  fs::remove(folder_.path("radiashafts/settings"));
  fs::create_directory(folder_.path("radiashafts/settings"));
  UserKey::createForWriting("A")->writeNumber("n", 5);
  EXPECT_FALSE(UserKey::openForReading("A"));
}

TEST_F(UserStore, LivesInTheHomeWhereNoOtherFolderIsNamed) {
  const std::string home = std::getenv("HOME");
  setenv("HOME", folder_.folder().c_str(), 1);
  setenv("XDG_CONFIG_HOME", "relative", 1);
  UserKey::createForWriting("A")->writeNumber("n", 5);
  EXPECT_EQ(folder_.read(".config/radiashafts/settings"), "[A]\nn = dword:00000005\n");
  setenv("HOME", "", 1);
  EXPECT_FALSE(UserKey::createForWriting("A") || UserKey::openForReading("A"));
  setenv("HOME", home.c_str(), 1);
}

// Processes that keep values and presets at once, and one that deletes its presets again. A preset
// is in the file when that was told.
TEST_F(UserStore, ManyWritersLoseNothing) {
  constexpr int writers = 8;
  const auto nameOf = [](int i, std::uint32_t n) { return std::to_string(i) + std::to_string(n); };
  pfParameters& parameters = set_.parameters;
  const std::string path = folder_.path("p.cfg");
  for (int i = 0; i < writers; ++i) {
    if (fork() != 0) continue;
    for (std::uint32_t n = 0; n < 5; ++n) {
      UserKey::createForWriting("A")->writeNumber(nameOf(i, n), n);
      std::string failure;
      do {
        failure.clear();
        parameters.SaveSettings(nameOf(i, n), path, "Us", &failure);
      } while (!failure.empty());
      if (i > 0 || n == 0) continue;
      const std::string gone = nameOf(i, n - 1);
      while (parameters.LoadSettings(gone, path, nullptr)) parameters.DeleteSettings(gone, path);
    }
    _exit(0);
  }
  for (int i = 0; i < writers; ++i) wait(nullptr);
  const auto key = UserKey::openForReading("A");
  for (int i = 0; i < writers; ++i) {
    for (std::uint32_t n = 0; n < 5; ++n) {
      EXPECT_EQ(key->readNumber(nameOf(i, n)), n);
      EXPECT_EQ(parameters.LoadSettings(nameOf(i, n), path, nullptr), i > 0 || n == 4) << i << n;
    }
  }
}

constexpr char old[] = "FileOwner Us\n\nname A\nAmount 1\n";

struct PresetsOnThisSystem : testing::Test, TestFolder {
  PresetsOnThisSystem() { write("p.cfg", old); }
  // Whether it was told so.
  bool save(const std::string& name = "B") {
    std::string failure;
    return set.parameters.SaveSettings(name, file, "Us", &failure) && failure.empty();
  }
  // What a forked process answers.
  static int exitCodeOf(const std::function<int()>& work) {
    const pid_t child = fork();
    if (child == 0) _exit(work());
    int status = 0;
    waitpid(child, &status, 0);
    return WEXITSTATUS(status);
  }
  std::string file = path("p.cfg");
  PresetSet set;
};

int stepsToEnd = 0;

TEST_F(PresetsOnThisSystem, AProcessThatEndsAnywhereOrAFullDiskLeavesTheOldFile) {
  for (int step = 0; step < 4; ++step) {
    EXPECT_EQ(exitCodeOf([&] {
                stepsToEnd = step;
                platform::replaceFault = [](ReplaceStep) {
                  if (stepsToEnd-- == 0) _exit(7);
                  return false;
                };
                return save();
              }),
              7);
    EXPECT_EQ(read("p.cfg"), old) << step;
  }
  EXPECT_EQ(fileCount(), 2);  // what the last one left
  EXPECT_EQ(exitCodeOf([&] {
              std::signal(SIGXFSZ, SIG_IGN);
              const rlimit limit{100, 100};
              setrlimit(RLIMIT_FSIZE, &limit);
              return save() ? 1 : 7;
            }),
            7);
  EXPECT_EQ(read("p.cfg"), old);
  EXPECT_TRUE(save());
  EXPECT_EQ(fileCount(), 1);
}

TEST_F(PresetsOnThisSystem, LinksRightsAndLongNamesStay) {
  chmod(file.c_str(), 0444);
  EXPECT_FALSE(save());
  EXPECT_EQ(read("p.cfg"), old);
  fs::create_directory(path("elsewhere"));
  fs::rename(file, path("elsewhere/real.cfg"));
  fs::create_symlink("elsewhere/real.cfg", file);
  chmod(file.c_str(), 0640);
  EXPECT_TRUE(save());
  EXPECT_TRUE(fs::is_symlink(file));
  EXPECT_NE(read("elsewhere/real.cfg"), old);
  EXPECT_EQ(fs::status(file).permissions(), fs::perms(0640));
  for (const std::size_t length : {249U, 252U}) {
    file = path(std::string(length, 'n') + "tmp");
    EXPECT_TRUE(save("A") && save("B")) << length;
    EXPECT_TRUE(set.parameters.LoadSettings("A", file, nullptr)) << length;
  }
  EXPECT_EQ(fileCount(), 4);
}

int other = -1;
int tries = 0;

TEST_F(PresetsOnThisSystem, WhoFindsAnotherAtTheFileWaitsAndThenLeavesBothAlone) {
  write("p.cfgtmp", "half");
  other = open((file + "tmp").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(flock(other, LOCK_EX), 0);
  EXPECT_FALSE(save());
  EXPECT_FALSE(set.parameters.DeleteSettings("A", file));
  EXPECT_EQ(read("p.cfg") + read("p.cfgtmp"), old + std::string("half"));
  tries = 0;
  platform::replaceFault = [](ReplaceStep) {
    if (++tries == 3) close(other);
    return false;
  };
  EXPECT_TRUE(save());
  platform::replaceFault = nullptr;
  EXPECT_NE(read("p.cfg"), old);
}

}  // namespace
}  // namespace radiashafts::test
