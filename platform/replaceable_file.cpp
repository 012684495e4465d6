#include "platform/replaceable_file.h"

#include <system_error>

namespace radiashafts::platform {

std::filesystem::path fileBehindLinks(const std::filesystem::path& path) {
  std::error_code error;
  if (!std::filesystem::is_symlink(path, error)) return path;
  const std::filesystem::path target = std::filesystem::weakly_canonical(path, error);
  return error ? path : target;
}

}  // namespace radiashafts::platform
