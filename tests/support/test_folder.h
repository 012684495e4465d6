#pragma once

#include <filesystem>
#include <fstream>
#include <random>
#include <sstream>
#include <string>

namespace radiashafts::test {

// A folder of its own for a test, gone at the end of its life.
class TestFolder {
 public:
  TestFolder()
      : folder_(std::filesystem::temp_directory_path() /
                ("radiashafts-" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directory(folder_);
  }
  ~TestFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
  }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  std::string path(const std::string& name) const { return (folder_ / name).string(); }
  std::string folder() const { return folder_.string(); }
  void write(const std::string& name, const std::string& content) const {
    std::ofstream(path(name), std::ios::binary) << content;
  }
  // "absent" where there is no such file.
  std::string read(const std::string& name) const {
    std::ifstream stream(path(name), std::ios::binary);
    if (!stream) return "absent";
    return (std::ostringstream() << stream.rdbuf()).str();
  }
  int fileCount() const {
    return static_cast<int>(std::distance(std::filesystem::directory_iterator(folder_), {}));
  }

 private:
  std::filesystem::path folder_;
};

}  // namespace radiashafts::test
