#include "platform/replaceable_file.h"
#include <windows.h>

namespace radiashafts::platform {

bool mayChange(const std::filesystem::path& file) {
  const DWORD attributes = GetFileAttributesW(file.c_str());
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) == 0;
}

}  // namespace radiashafts::platform
