#include "standin/partial_file.h"

#include <random>

namespace radiashafts::standin {

namespace fs = std::filesystem;

PartialFile::PartialFile(const fs::path& place) : place_(place) {
  fs::path name = ".";
  name += place.stem();
  name += ".partial-" + std::to_string(std::random_device()());
  name += place.extension();
  path_ = place.parent_path() / name;
}

PartialFile::~PartialFile() {
  std::error_code ignored;
  fs::remove(path_, ignored);
}

std::string PartialFile::putInPlace() {
  std::error_code error;
  fs::rename(path_, place_, error);
  return error ? error.message() : std::string();
}

}  // namespace radiashafts::standin
