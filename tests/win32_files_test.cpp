// Files as this system has them: shared with other programs or not, and read-only ones.

#include <windows.h>

#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/preset_set.h"
#include "tests/support/test_folder.h"

namespace radiashafts::test {
namespace {

constexpr char old[] = "FileOwner Us\n\nname A\nAmount 1\n";

struct PresetFile {
  PresetFile() { folder.write("p.cfg", old); }
  ~PresetFile() { close(); }
  void open(const std::string& name, DWORD access, DWORD sharing) {
    close();
    handle =
        CreateFileA(folder.path(name).c_str(), access, sharing, nullptr, OPEN_ALWAYS, 0, nullptr);
    ASSERT_NE(handle, INVALID_HANDLE_VALUE);
  }
  void close() {
    if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
    handle = INVALID_HANDLE_VALUE;
  }
  // Why it was not saved; empty when it was.
  std::string save() {
    std::string failure;
    EXPECT_TRUE(set.parameters.SaveSettings("B", folder.path("p.cfg"), "Us", &failure));
    return failure;
  }
  TestFolder folder;
  PresetSet set;
  HANDLE handle = INVALID_HANDLE_VALUE;
};

TEST(PresetsOnThisSystem, AFileThatIsOpenElsewhereStaysAsItWas) {
  PresetFile file;
  constexpr DWORD all = FILE_SHARE_READ | FILE_SHARE_WRITE;
  file.open("p.cfg", GENERIC_READ, all);
  EXPECT_NE(file.save(), "");
  EXPECT_EQ(file.folder.read("p.cfg"), old);
  file.open("p.cfg", GENERIC_READ, 0);
  EXPECT_NE(file.save(), "");
  EXPECT_FALSE(file.set.parameters.LoadSettings("A", file.folder.path("p.cfg"), nullptr));
  EXPECT_FALSE(file.set.parameters.DeleteSettings("A", file.folder.path("p.cfg")));
  file.open("p.cfgtmp", GENERIC_WRITE, all);
  EXPECT_NE(file.save(), "");
  file.close();
  EXPECT_EQ(file.folder.read("p.cfg"), old);
  EXPECT_EQ(file.save(), "");
  EXPECT_EQ(file.folder.fileCount(), 1);
}

// Threads stand for processes: a file that is open is shared with neither.
TEST(PresetsOnThisSystem, ManyWritersLoseNothing) {
  PresetFile file;
  constexpr int writers = 4;
  constexpr int saves = 5;
  const auto nameOf = [](int i, int n) { return std::to_string(i) + std::to_string(n); };
  std::vector<std::thread> threads;
  for (int i = 0; i < writers; ++i) {
    threads.emplace_back([&, i] {
      PresetSet set;
      std::string failure;
      for (int n = 0; n < saves; n += failure.empty()) {
        failure.clear();
        set.parameters.SaveSettings(nameOf(i, n), file.folder.path("p.cfg"), "Us", &failure);
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  for (int i = 0; i < writers; ++i) {
    for (int n = 0; n < saves; ++n) {
      EXPECT_TRUE(
          file.set.parameters.LoadSettings(nameOf(i, n), file.folder.path("p.cfg"), nullptr));
    }
  }
  EXPECT_EQ(file.folder.fileCount(), 1);
}

TEST(PresetsOnThisSystem, AReadOnlyFileStaysAsItWas) {
  PresetFile file;
  const std::string path = file.folder.path("p.cfg");
  SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_NE(file.save(), "");
  EXPECT_EQ(file.folder.read("p.cfg"), old);
  SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(file.folder.fileCount(), 1);
}

}  // namespace
}  // namespace radiashafts::test
