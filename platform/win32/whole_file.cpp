#include "platform/whole_file.h"
#include <windows.h>

#include <algorithm>
#include <system_error>

#include "platform/temporary_file.h"

namespace radiashafts::platform {
namespace {

HANDLE fileOf(std::intptr_t handle) {
  return reinterpret_cast<HANDLE>(handle);
}

FileState readContent(HANDLE file, std::string& content) {
  LARGE_INTEGER size{};
  if (GetFileType(file) != FILE_TYPE_DISK) return FileState::unfit;
  if (GetFileSizeEx(file, &size) == 0) return FileState::refused;
  if (static_cast<std::size_t>(size.QuadPart) > maximumWholeFile) return FileState::unfit;
  content.resize(static_cast<std::size_t>(size.QuadPart));
  DWORD done = 0;
  if (ReadFile(file, content.data(), static_cast<DWORD>(content.size()), &done, nullptr) == 0) {
    return FileState::refused;
  }
  content.resize(done);
  return FileState::whole;
}

FileState stateOfUnopened(const std::string& path, DWORD error) {
  if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) return FileState::absent;
  const DWORD attributes = GetFileAttributesA(path.c_str());
  const bool folder =
      attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  return folder ? FileState::unfit : FileState::refused;
}

}  // namespace

const char lineEnd[] = "\r\n";

std::optional<std::string> narrowPath(const std::filesystem::path& path) {
  const std::wstring wide = path.wstring();
  const int length = static_cast<int>(wide.size());
  BOOL lost = FALSE;  // cannot be asked of UTF-8, which loses nothing
  const bool asks = GetACP() != CP_UTF8;
  const DWORD flags = asks ? WC_NO_BEST_FIT_CHARS : 0;
  std::string narrow(4 * wide.size(), '\0');
  const int size =
      WideCharToMultiByte(CP_ACP, flags, wide.data(), length, narrow.data(),
                          static_cast<int>(narrow.size()), nullptr, asks ? &lost : nullptr);
  narrow.resize(static_cast<std::size_t>(size));
  return lost == FALSE ? std::optional(narrow) : std::nullopt;
}

WholeFile readWholeFile(const std::string& path) {
  WholeFile result{FileState::absent, {}};
  const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    result.state = stateOfUnopened(path, GetLastError());
    return result;
  }
  result.state = readContent(file, result.content);
  CloseHandle(file);
  return result;
}

TemporaryFile::TemporaryFile(const std::string& place) : place_(place), path_(place + "tmp") {}

TemporaryFile::~TemporaryFile() {
  if (handle_ != -1) CloseHandle(fileOf(handle_));
  if (opened_) DeleteFileA(path_.c_str());
}

bool TemporaryFile::failed() {
  error_ = std::system_category().message(static_cast<int>(GetLastError()));
  return false;
}

bool TemporaryFile::open() {
  const DWORD attributes = GetFileAttributesA(place_.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    SetLastError(ERROR_ACCESS_DENIED);
    return failed();
  }
  // Shared with nobody: while a process is at it, no other one can take or rename it.
  const HANDLE file = CreateFileA(path_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) return failed();
  handle_ = reinterpret_cast<std::intptr_t>(file);
  opened_ = true;
  return true;
}

bool TemporaryFile::write(const char* bytes, std::size_t size) {
  DWORD done = 0;
  const bool written =
      WriteFile(fileOf(handle_), bytes, static_cast<DWORD>(size), &done, nullptr) != 0;
  return (written && done == size) || failed();
}

bool TemporaryFile::flush() {
  return FlushFileBuffers(fileOf(handle_)) != 0 || failed();
}

// What looks at every new file of the machine may hold this one for a moment.
bool TemporaryFile::putInPlace() {
  constexpr DWORD flags = MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH;
  constexpr int attempts = 10;
  constexpr DWORD pause = 50;  // milliseconds
  CloseHandle(fileOf(handle_));
  handle_ = -1;
  for (int attempt = 1; MoveFileExA(path_.c_str(), place_.c_str(), flags) == 0; ++attempt) {
    const DWORD error = GetLastError();
    const bool held = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
    if (!held || attempt == attempts) {
      SetLastError(error);
      return failed();
    }
    Sleep(pause);
  }
  opened_ = false;
  return true;
}

}  // namespace radiashafts::platform
