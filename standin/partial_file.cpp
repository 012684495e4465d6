#include "standin/partial_file.h"

#include <random>

#include "platform/replaceable_file.h"

namespace radiashafts::standin {

namespace fs = std::filesystem;

PartialFile::PartialFile(const fs::path& target) : target_(platform::fileBehindLinks(target)) {
  fs::path name = ".partial-" + std::to_string(std::random_device()());
  name += target_.extension();
  path_ = target_.parent_path() / name;
}

std::string PartialFile::obstacle(const fs::path& target) {
  std::error_code error;
  const fs::path directory = target.parent_path();
  if (!directory.empty() && !fs::is_directory(directory, error)) return "no such directory";
  const fs::file_status status = fs::status(target, error);
  if (fs::is_directory(status)) return "is a directory";
  if (!fs::exists(status)) {
    return fs::is_symlink(fs::symlink_status(target, error)) ? "is a link to nothing" : "";
  }
  if (!fs::is_regular_file(status)) return "is no plain file";
  return platform::mayChange(target) ? "" : "is read-only";
}

PartialFile::~PartialFile() {
  std::error_code ignored;
  fs::remove(path_, ignored);
}

std::string PartialFile::renameToTarget() {
  if (std::string reason = obstacle(target_); !reason.empty()) return reason;
  std::error_code error;
  const fs::file_status replaced = fs::status(target_, error);
  if (fs::is_regular_file(replaced)) fs::permissions(path_, replaced.permissions(), error);
  fs::rename(path_, target_, error);
  return error ? error.message() : std::string();
}

}  // namespace radiashafts::standin
