#include "platform/replaceable_file.h"

#include <sys/stat.h>
#include <unistd.h>

namespace radiashafts::platform {

bool mayChange(const std::filesystem::path& file) {
  struct stat facts {};
  constexpr mode_t anyone = S_IWUSR | S_IWGRP | S_IWOTH;
  return access(file.c_str(), W_OK) == 0 && stat(file.c_str(), &facts) == 0 &&
         (facts.st_mode & anyone) != 0;
}

}  // namespace radiashafts::platform
