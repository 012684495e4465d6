#include "standin/partial_file.h"

#include <random>

#include "platform/file_rights.h"

namespace radiashafts::standin {

namespace fs = std::filesystem;

namespace {

// A link to a file stays, and the file behind it is the one that is replaced.
fs::path behindLinks(const fs::path& place) {
  std::error_code error;
  if (!fs::is_symlink(place, error)) return place;
  const fs::path target = fs::weakly_canonical(place, error);
  return error ? place : target;
}

}  // namespace

PartialFile::PartialFile(const fs::path& place) : place_(behindLinks(place)) {
  fs::path name = ".partial-" + std::to_string(std::random_device()());
  name += place_.extension();
  path_ = place_.parent_path() / name;
}

std::string PartialFile::obstacle(const fs::path& place) {
  std::error_code error;
  const fs::path directory = place.parent_path();
  if (!directory.empty() && !fs::is_directory(directory, error)) return "no such directory";
  const fs::file_status status = fs::status(place, error);
  if (fs::is_directory(status)) return "is a directory";
  if (!fs::exists(status)) {
    return fs::is_symlink(fs::symlink_status(place, error)) ? "is a link to nothing" : "";
  }
  if (!fs::is_regular_file(status)) return "is no plain file";
  return platform::mayChange(place) ? "" : "is read-only";
}

PartialFile::~PartialFile() {
  std::error_code ignored;
  fs::remove(path_, ignored);
}

std::string PartialFile::putInPlace() {
  if (std::string reason = obstacle(place_); !reason.empty()) return reason;
  std::error_code error;
  const fs::file_status replaced = fs::status(place_, error);
  if (fs::is_regular_file(replaced)) fs::permissions(path_, replaced.permissions(), error);
  fs::rename(path_, place_, error);
  return error ? error.message() : std::string();
}

}  // namespace radiashafts::standin
