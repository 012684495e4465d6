// Files as this system has them: the text of the user's store, rights, links and full disks.

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/user_store.h"
#include "platform/whole_file.h"
#include "tests/support/preset_set.h"
#include "tests/support/test_folder.h"

namespace radiashafts::test {
namespace {

namespace fs = std::filesystem;
using platform::UserKey;

TEST(UserStore, IsATextInTheHomeWhoseDamagedValuesAreAbsent) {
  const TestFolder home;
  const std::string homeBefore = std::getenv("HOME");
  setenv("HOME", home.folder().c_str(), 1);
  setenv("XDG_CONFIG_HOME", "relative", 1);
  fs::create_directories(home.path(".config/radiashafts"));
  home.write(
      ".config/radiashafts/settings",
      "n = dword:1\n[A\n[A\\B]\nn = dword:000a\nm = dword:\nt = text:a\\nb\\\\\nb = bytes:01fe\n"
      "c = bytes:0g\n[]\nn = dword:2");
  std::uint8_t bytes[2] = {};
  EXPECT_TRUE(UserKey::openForReading("A"));
  const auto key = UserKey::openForReading("A\\B");
  EXPECT_EQ(key->readNumber("n").value_or(0) + key->readNumber("m").value_or(5), 15);
  EXPECT_EQ(key->readText("t"), "a\nb\\");
  EXPECT_TRUE(key->readBytes("b", bytes, 2) && bytes[1] == 0xFE);
  EXPECT_FALSE(key->readBytes("c", bytes, 1) || key->readBytes("b", bytes, 1));
  setenv("HOME", "", 1);
  EXPECT_FALSE(UserKey::openForReading("A"));
  setenv("HOME", homeBefore.c_str(), 1);
  unsetenv("XDG_CONFIG_HOME");
}

constexpr char old[] = "FileOwner Us\n\nname A\nAmount 1\n";

struct PresetsOnThisSystem : testing::Test, TestFolder {
  PresetsOnThisSystem() { write("p.cfg", old); }
  // Whether it was told so.
  bool save(const std::string& name = "B") {
    std::string failure;
    return set.parameters.SaveSettings(name, file, "Us", &failure) && failure.empty();
  }
  std::string file = path("p.cfg");
  PresetSet set;
};

TEST_F(PresetsOnThisSystem, AFullDiskLeavesTheOldFile) {
  std::signal(SIGXFSZ, SIG_IGN);
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const rlimit limit{100, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &limit);
  const bool saved = save();
  setrlimit(RLIMIT_FSIZE, &before);
  EXPECT_FALSE(saved);
  EXPECT_EQ(read("p.cfg"), old);
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
  file = path(std::string(252, 'n') + "tmp");  // the longest that there is
  EXPECT_TRUE(save("A") && save("B"));
  EXPECT_TRUE(set.parameters.LoadSettings("A", file, nullptr));
  EXPECT_EQ(fileCount(), 3);
}

int other = -1;
int tries = 0;

TEST_F(PresetsOnThisSystem, AWriterWaitsForAnotherAndThenGivesUp) {
  write("p.cfgtmp", "half");
  other = open((file + "tmp").c_str(), O_RDONLY | O_CLOEXEC);
  ASSERT_EQ(flock(other, LOCK_EX), 0);
  EXPECT_FALSE(save());
  EXPECT_FALSE(set.parameters.DeleteSettings("A", file));
  EXPECT_EQ(read("p.cfg") + read("p.cfgtmp"), old + std::string("half"));
  tries = 0;
  platform::replaceFault = [](platform::ReplaceStep) {
    if (++tries == 3) close(other);
    return false;
  };
  EXPECT_TRUE(save());
  platform::replaceFault = nullptr;
  EXPECT_NE(read("p.cfg"), old);
}

}  // namespace
}  // namespace radiashafts::test
