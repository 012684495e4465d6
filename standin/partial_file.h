// A file that is written beside its place and put there when it is complete.
#pragma once

#include <filesystem>
#include <string>

namespace radiashafts::standin {

class PartialFile {
 public:
  // Why the place holds no file or what may not be replaced; empty where one can be put there.
  static std::string obstacle(const std::filesystem::path& place);

  // A short name without special characters in the place's folder, with the place's extension.
  explicit PartialFile(const std::filesystem::path& place);
  ~PartialFile();  // removes what was not put in place
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // Empty, or why it failed.
  std::string putInPlace();

 private:
  std::filesystem::path place_;
  std::filesystem::path path_;
};

}  // namespace radiashafts::standin
