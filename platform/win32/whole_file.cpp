#include "platform/whole_file.h"
#include <windows.h>

#include <algorithm>
#include <system_error>
#include <vector>

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

FileState stateAfterOpenError(const std::string& path, DWORD error) {
  if (error == ERROR_FILE_NOT_FOUND || error == ERROR_PATH_NOT_FOUND) return FileState::absent;
  const DWORD attributes = GetFileAttributesA(path.c_str());
  const bool folder =
      attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
  return folder ? FileState::unfit : FileState::refused;
}

// With long names: a file that is renamed to a short one keeps no other.
std::wstring absolutePath(const std::string& path) {
  std::wstring wide(path.size(), L'\0');
  wide.resize(static_cast<std::size_t>(
      MultiByteToWideChar(CP_ACP, 0, path.data(), static_cast<int>(path.size()), wide.data(),
                          static_cast<int>(wide.size()))));
  std::wstring whole(GetFullPathNameW(wide.c_str(), 0, nullptr, nullptr), L'\0');
  whole.resize(
      GetFullPathNameW(wide.c_str(), static_cast<DWORD>(whole.size()), whole.data(), nullptr));
  std::wstring longNames(GetLongPathNameW(whole.c_str(), nullptr, 0), L'\0');
  longNames.resize(
      GetLongPathNameW(whole.c_str(), longNames.data(), static_cast<DWORD>(longNames.size())));
  return longNames.empty() ? whole : longNames;  // where there is no such file
}

}  // namespace

const char lineEnd[] = "\r\n";

std::optional<std::string> narrowPath(const std::filesystem::path& path) {
  const std::wstring wide = path.wstring();
  const int length = static_cast<int>(wide.size());
  BOOL lost = FALSE;  // must not be requested for UTF-8, which loses nothing
  const bool reportsLoss = GetACP() != CP_UTF8;
  const DWORD flags = reportsLoss ? WC_NO_BEST_FIT_CHARS : 0;
  std::string narrow(4 * wide.size(), '\0');
  const int size =
      WideCharToMultiByte(CP_ACP, flags, wide.data(), length, narrow.data(),
                          static_cast<int>(narrow.size()), nullptr, reportsLoss ? &lost : nullptr);
  narrow.resize(static_cast<std::size_t>(size));
  return lost == FALSE ? std::optional(narrow) : std::nullopt;
}

WholeFile readWholeFile(const std::string& path) {
  WholeFile result{FileState::absent, {}};
  const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                  OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    result.state = stateAfterOpenError(path, GetLastError());
    return result;
  }
  result.state = readContent(file, result.content);
  CloseHandle(file);
  return result;
}

TemporaryFile::TemporaryFile(const std::string& target) : target_(target), path_(target + "tmp") {}

TemporaryFile::~TemporaryFile() {
  if (handle_ != -1) CloseHandle(fileOf(handle_));
  if (exists_) DeleteFileA(path_.c_str());
}

bool TemporaryFile::recordError() {
  error_ = std::system_category().message(static_cast<int>(GetLastError()));
  return false;
}

TemporaryFile::OpenResult TemporaryFile::open() {
  const DWORD attributes = GetFileAttributesA(target_.c_str());
  if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
    SetLastError(ERROR_ACCESS_DENIED);
    return recordError(OpenResult::failed);
  }
  // FILE_SHARE_READ only: while this file is open, nothing else can write or rename it, but readers
  // can open it right after the rename, before it is closed.
  const HANDLE file = CreateFileA(path_.c_str(), GENERIC_WRITE | DELETE, FILE_SHARE_READ, nullptr,
                                  CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (file == INVALID_HANDLE_VALUE) {
    return recordError(GetLastError() == ERROR_SHARING_VIOLATION ? OpenResult::inUse
                                                                 : OpenResult::failed);
  }
  handle_ = reinterpret_cast<std::intptr_t>(file);
  exists_ = true;
  return OpenResult::opened;
}

bool TemporaryFile::write(const char* bytes, std::size_t size) {
  DWORD done = 0;
  const bool written =
      WriteFile(fileOf(handle_), bytes, static_cast<DWORD>(size), &done, nullptr) != 0;
  return (written && done == size) || recordError();
}

bool TemporaryFile::flush() {
  return FlushFileBuffers(fileOf(handle_)) != 0 || recordError();
}

// Renames by the open handle, so that no other process can open the file in between. Retries,
// because a virus scanner or indexer may have the old file open for a moment.
bool TemporaryFile::renameToTarget() {
  constexpr int attempts = 10;
  constexpr DWORD pause = 50;  // milliseconds
  const std::wstring target = absolutePath(target_);
  std::vector<std::byte> buffer(sizeof(FILE_RENAME_INFO) + target.size() * sizeof(wchar_t));
  auto& request = *reinterpret_cast<FILE_RENAME_INFO*>(buffer.data());
  request.ReplaceIfExists = TRUE;
  request.FileNameLength = static_cast<DWORD>(target.size() * sizeof(wchar_t));
  std::copy(target.begin(), target.end(), request.FileName);
  const auto rename = [&] {
    return SetFileInformationByHandle(fileOf(handle_), FileRenameInfo, &request,
                                      static_cast<DWORD>(buffer.size())) != 0;
  };
  for (int attempt = 1; !rename(); ++attempt) {
    const DWORD error = GetLastError();
    const bool locked = error == ERROR_ACCESS_DENIED || error == ERROR_SHARING_VIOLATION;
    if (!locked || attempt == attempts) {
      SetLastError(error);
      return recordError();
    }
    Sleep(pause);
  }
  exists_ = false;
  FlushFileBuffers(fileOf(handle_));  // so that the new name is on the disk too
  return true;
}

}  // namespace radiashafts::platform
