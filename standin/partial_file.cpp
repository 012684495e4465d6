#include "standin/partial_file.h"

#include <random>

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
  fs::path name = ".";
  name += place_.stem();
  name += ".partial-" + std::to_string(std::random_device()());
  name += place_.extension();
  path_ = place_.parent_path() / name;
}

PartialFile::~PartialFile() {
  std::error_code ignored;
  fs::remove(path_, ignored);
}

std::string PartialFile::putInPlace() {
  std::error_code error;
  const fs::file_status replaced = fs::status(place_, error);
  if (fs::is_regular_file(replaced)) fs::permissions(path_, replaced.permissions(), error);
  fs::rename(path_, place_, error);
  return error ? error.message() : std::string();
}

}  // namespace radiashafts::standin
