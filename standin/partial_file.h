// A file that is written next to its target and renamed to it when it is complete.
#pragma once

#include <filesystem>
#include <string>

namespace radiashafts::standin {

class PartialFile {
 public:
  // The reason why the target cannot be created or replaced; empty if it can.
  static std::string obstacle(const std::filesystem::path& target);

  // Chooses a short name without special characters, in the target's folder and with its extension.
  explicit PartialFile(const std::filesystem::path& target);
  ~PartialFile();  // deletes the file unless it was renamed
  PartialFile(const PartialFile&) = delete;
  PartialFile& operator=(const PartialFile&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // Returns the reason of a failure, or an empty string.
  std::string renameToTarget();

 private:
  std::filesystem::path target_;
  std::filesystem::path path_;
};

}  // namespace radiashafts::standin
