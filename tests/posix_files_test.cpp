// Files as this system has them: the text of the user's store, rights, links, pipes, full disks and
// a process that ends in the midst of a change.

#include <csignal>
#include <cstdlib>
#include <filesystem>

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
};

TEST_F(UserStore, IsATextThatKeepsWhatItDoesNotKnow) {
  write("# by hand\n[A]\nOne = dword:1\n\nlost line\n\n[B]\nOne = bytes:00\nFuture = qword:1");
  UserKey::createForWriting("A")->writeText("Two", "a\nb\\");
  UserKey::createForWriting("B")->writeNumber("One", 10);
  UserKey::createForWriting("C");
  EXPECT_EQ(content(),
            "# by hand\n[A]\nOne = dword:1\n\nlost line\nTwo = text:a\\nb\\\\\n\n[B]\n"
            "One = dword:0000000a\nFuture = qword:1\n\n[C]\n");
  EXPECT_EQ(UserKey::openForReading("A")->readNumber("One"), 1U);
  EXPECT_EQ(UserKey::openForReading("A")->readText("Two"), "a\nb\\");
}

TEST_F(UserStore, DamageReadsAsAbsentAndTheRestStands) {
  const std::string noise("\0]\xff[A\n=\n = \n[\n[]\r\n", 18);
  write(noise + "[A]\nn = dword:\nm = dword:123456789\nk = dword:-1\nb = bytes:0\nc = bytes:0g\n" +
        noise + "t = text");
  const auto key = UserKey::openForReading("A");
  ASSERT_TRUE(key);
  for (const char* name : {"n", "m", "k", "b", "c", "t", ""}) {
    std::uint8_t byte = 0;
    EXPECT_FALSE(key->readNumber(name) || key->readText(name) || key->readBytes(name, &byte, 1))
        << name;
  }
  UserKey::createForWriting("A")->writeNumber("n", 5);
  EXPECT_EQ(UserKey::openForReading("A")->readNumber("n"), 5U);
  fs::remove(folder_.path("radiashafts/settings"));
  fs::create_directory(folder_.path("radiashafts/settings"));
  EXPECT_FALSE(UserKey::openForReading("A"));
  UserKey::createForWriting("A")->writeNumber("n", 5);
  EXPECT_TRUE(fs::is_empty(folder_.path("radiashafts/settings")));
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
  PresetSet set;
  const std::string path = folder_.path("p.cfg");
  for (int i = 0; i < writers; ++i) {
    if (fork() != 0) continue;
    for (std::uint32_t n = 0; n < 5; ++n) {
      UserKey::createForWriting("A")->writeNumber(nameOf(i, n), n);
      std::string failure;
      do {
        failure.clear();
        set.parameters.SaveSettings(nameOf(i, n), path, "Us", &failure);
      } while (!failure.empty());
      if (i == 0 && n > 0) {
        const std::string gone = nameOf(i, n - 1);
        while (set.parameters.LoadSettings(gone, path, nullptr) &&
               !set.parameters.DeleteSettings(gone, path)) {
        }
      }
    }
    _exit(0);
  }
  for (int i = 0; i < writers; ++i) wait(nullptr);
  const auto key = UserKey::openForReading("A");
  for (int i = 0; i < writers; ++i) {
    for (std::uint32_t n = 0; n < 5; ++n) {
      EXPECT_EQ(key->readNumber(nameOf(i, n)), n);
      EXPECT_EQ(set.parameters.LoadSettings(nameOf(i, n), path, nullptr), i > 0 || n == 4)
          << nameOf(i, n);
    }
  }
}

constexpr char old[] = "FileOwner Us\n\nname A\nAmount 1\n";

struct PresetFile {
  PresetFile() { folder.write("p.cfg", old); }
  bool save(const std::string& name = "B") {
    failure.clear();
    return set.parameters.SaveSettings(name, path, "Us", &failure);
  }
  TestFolder folder;
  std::string path = folder.path("p.cfg");
  PresetSet set;
  std::string failure;
};

int stepsToEnd = 0;

TEST(PresetsOnThisSystem, AProcessThatEndsAnywhereLeavesTheOldFileOrTheNewOne) {
  PresetFile file;
  for (int step = 0; step < 4; ++step) {
    const pid_t child = fork();
    if (child == 0) {
      stepsToEnd = step;
      platform::replaceFault = [](ReplaceStep) {
        if (stepsToEnd-- == 0) _exit(7);
        return false;
      };
      file.save();
      _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ASSERT_EQ(WEXITSTATUS(status), 7);
    EXPECT_EQ(file.folder.read("p.cfg"), old) << step;
  }
  EXPECT_EQ(file.folder.fileCount(), 2);  // what the last one left
  EXPECT_TRUE(file.save());
  EXPECT_EQ(file.failure, "");
  EXPECT_EQ(file.folder.fileCount(), 1);
}

TEST(PresetsOnThisSystem, AFullDiskLeavesTheOldFile) {
  PresetFile file;
  const pid_t child = fork();
  if (child == 0) {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit{100, 100};
    setrlimit(RLIMIT_FSIZE, &limit);
    _exit(file.save() && !file.failure.empty() ? 7 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  EXPECT_EQ(WEXITSTATUS(status), 7);
  EXPECT_EQ(file.folder.read("p.cfg"), old);
  EXPECT_EQ(file.folder.fileCount(), 1);
}

TEST(PresetsOnThisSystem, LinksRightsAndLongNamesStay) {
  PresetFile file;
  chmod(file.path.c_str(), 0444);
  file.save();
  EXPECT_NE(file.failure, "");
  EXPECT_EQ(file.folder.read("p.cfg"), old);
  fs::create_directory(file.folder.path("elsewhere"));
  fs::rename(file.path, file.folder.path("elsewhere/real.cfg"));
  fs::create_symlink("elsewhere/real.cfg", file.path);
  chmod(file.path.c_str(), 0640);
  ASSERT_TRUE(file.save());
  EXPECT_TRUE(fs::is_symlink(file.path));
  EXPECT_NE(file.folder.read("elsewhere/real.cfg"), old);
  struct stat facts {};
  stat(file.path.c_str(), &facts);
  EXPECT_EQ(facts.st_mode & 0777, 0640U);
  for (const int length : {249, 252}) {
    file.path = file.folder.path(std::string(static_cast<std::size_t>(length), 'n') + "tmp");
    EXPECT_TRUE(file.save("A") && file.save("B")) << length;
    EXPECT_EQ(file.failure, "") << length;
    EXPECT_TRUE(file.set.parameters.LoadSettings("A", file.path, nullptr)) << length;
  }
  EXPECT_EQ(file.folder.fileCount(), 4);
}

int other = -1;
int tries = 0;

TEST(PresetsOnThisSystem, WhoFindsAnotherAtTheFileWaitsAndThenLeavesBothAlone) {
  PresetFile file;
  file.folder.write("p.cfgtmp", "half");
  other = open((file.path + "tmp").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(flock(other, LOCK_EX), 0);
  EXPECT_TRUE(file.save());
  EXPECT_NE(file.failure, "");
  EXPECT_FALSE(file.set.parameters.DeleteSettings("A", file.path));
  EXPECT_EQ(file.folder.read("p.cfg"), old);
  EXPECT_EQ(file.folder.read("p.cfgtmp"), "half");
  tries = 0;
  platform::replaceFault = [](ReplaceStep) {
    if (++tries == 3) close(other);
    return false;
  };
  EXPECT_TRUE(file.save());
  platform::replaceFault = nullptr;
  EXPECT_EQ(file.failure, "");
  EXPECT_NE(file.folder.read("p.cfg"), old);
}

TEST(PresetsOnThisSystem, PipesAndDevicesAreNoPresetFiles) {
  const TestFolder folder;
  ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
  PresetSet set;
  for (const std::string& path : {folder.path("pipe"), std::string("/dev/null")}) {
    std::string owner = "Us";
    EXPECT_FALSE(set.parameters.IsSettingFileValid(path, owner));
    EXPECT_FALSE(set.parameters.SaveSettings("A", path, "Us"));
    EXPECT_FALSE(set.parameters.LoadSettings("A", path, nullptr));
    EXPECT_FALSE(fs::is_regular_file(path));
  }
}

}  // namespace
}  // namespace radiashafts::test
