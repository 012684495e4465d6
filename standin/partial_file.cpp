#include "standin/partial_file.h"

#include <random>

namespace radiashafts::standin {

namespace fs = std::filesystem;

PartialFile::PartialFile(const fs::path& place)
    : place_(place),
      path_(place.parent_path() /
            ("." + place.stem().string() + ".partial-" + std::to_string(std::random_device()()) +
             place.extension().string())) {}

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
