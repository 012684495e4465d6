// Files as this system has them: shared with other programs or not, and read-only ones.

#include <windows.h>

#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/preset_set.h"
#include "tests/support/test_folder.h"

namespace radiashafts::test {
namespace {

// Saves a preset into p.cfg and tells why it was not saved.
std::string save(const TestFolder& folder, const std::string& name) {
  PresetSet set;
  std::string failure;
  set.parameters.SaveSettings(name, folder.path("p.cfg"), "Us", &failure);
  return failure;
}

TEST(PresetsOnThisSystem, AFileThatIsOpenElsewhereOrReadOnlyStaysAsItWas) {
  const TestFolder folder;
  const std::string path = folder.path("p.cfg");
  const std::string old = "FileOwner Us\n\nname A\nAmount 1\n";
  folder.write("p.cfg", old);
  constexpr DWORD all = FILE_SHARE_READ | FILE_SHARE_WRITE;
  for (const auto& [name, sharing] :
       {std::pair{"p.cfg", all}, std::pair{"p.cfg", 0UL}, std::pair{"p.cfgtmp", all}}) {
    const HANDLE file = CreateFileA(folder.path(name).c_str(), GENERIC_READ | GENERIC_WRITE,
                                    sharing, nullptr, OPEN_ALWAYS, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    EXPECT_NE(save(folder, "B"), "") << name << ' ' << sharing;
    if (sharing == 0) {
      PresetSet set;
      EXPECT_FALSE(set.parameters.LoadSettings("A", path, nullptr));
      EXPECT_FALSE(set.parameters.DeleteSettings("A", path));
    }
    CloseHandle(file);
    EXPECT_EQ(folder.read("p.cfg"), old);
  }
  SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
  EXPECT_NE(save(folder, "B"), "");
  EXPECT_EQ(folder.read("p.cfg"), old);
  SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_NORMAL);
  EXPECT_EQ(save(folder, "B"), "");
  EXPECT_EQ(folder.fileCount(), 1);
}

// Threads stand for processes: a file that is open is shared with neither.
TEST(PresetsOnThisSystem, ManyWritersLoseNothing) {
  const TestFolder folder;
  constexpr int writers = 4, saves = 5;
  std::vector<std::thread> threads;
  for (int i = 0; i < writers; ++i) {
    threads.emplace_back([&folder, i] {
      for (int n = 0; n < saves;) n += save(folder, std::to_string(10 * i + n)).empty();
    });
  }
  for (std::thread& thread : threads) thread.join();
  PresetSet set;
  for (int i = 0; i < writers * saves; ++i) {
    const std::string name = std::to_string(10 * (i / saves) + i % saves);
    EXPECT_TRUE(set.parameters.LoadSettings(name, folder.path("p.cfg"), nullptr)) << name;
  }
  EXPECT_EQ(folder.fileCount(), 1);
}

}  // namespace
}  // namespace radiashafts::test
