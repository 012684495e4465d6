#include "platform/whole_file.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/replaceable_file.h"
#include "platform/temporary_file.h"

namespace radiashafts::platform {
namespace {

int fileOf(std::intptr_t handle) {
  return static_cast<int>(handle);
}

// The target's name plus "tmp". A name that would exceed the file system's limit is cut to 200
// bytes first, so that the result cannot be the target's own name.
std::string temporaryPathFor(const std::string& target) {
  constexpr std::size_t longest =
      255 - 3;  // bytes: the usual limit of file systems less the suffix
  constexpr std::size_t cut = 200;
  const std::filesystem::path path(target);
  const std::string name = path.filename();
  return path.parent_path() / (name.substr(0, name.size() > longest ? cut : longest) + "tmp");
}

FileState readContent(int file, std::string& content) {
  struct stat facts {};
  if (fstat(file, &facts) != 0) return FileState::refused;
  if (!S_ISREG(facts.st_mode) || static_cast<std::size_t>(facts.st_size) > maximumWholeFile) {
    return FileState::unfit;
  }
  content.resize(static_cast<std::size_t>(facts.st_size));
  std::size_t done = 0;
  while (done < content.size()) {
    const ssize_t count = read(file, content.data() + done, content.size() - done);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return FileState::refused;
    if (count == 0) break;
    done += static_cast<std::size_t>(count);
  }
  content.resize(done);
  return FileState::whole;
}

}  // namespace

const char lineEnd[] = "\n";

std::optional<std::string> narrowPath(const std::filesystem::path& path) {
  return path.string();
}

WholeFile readWholeFile(const std::string& path) {
  WholeFile result{FileState::absent, {}};
  // O_NONBLOCK: opening a pipe must not block.
  const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) {
    if (errno != ENOENT) result.state = FileState::refused;
    return result;
  }
  result.state = readContent(file, result.content);
  close(file);
  return result;
}

TemporaryFile::TemporaryFile(const std::string& target)
    : target_(fileBehindLinks(target).string()), path_(temporaryPathFor(target_)) {}

TemporaryFile::~TemporaryFile() {
  if (exists_) unlink(path_.c_str());
  if (handle_ >= 0) close(fileOf(handle_));
}

bool TemporaryFile::recordError() {
  error_ = std::generic_category().message(errno);
  return false;
}

TemporaryFile::OpenResult TemporaryFile::open() {
  struct stat replaced {};
  const bool replaces = stat(target_.c_str(), &replaced) == 0;
  // Renaming needs write access to the folder only, so a read-only file is checked here.
  if (replaces && !mayChange(target_)) {
    errno = EACCES;
    return recordError(OpenResult::failed);
  }
  constexpr int flags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  const int file = ::open(path_.c_str(), flags, 0666);
  if (file < 0) return recordError(OpenResult::failed);
  // Another writer may have renamed or deleted the file between open and flock.
  struct stat openedFile {};
  struct stat namedFile {};
  const bool locked = flock(file, LOCK_EX | LOCK_NB) == 0 && fstat(file, &openedFile) == 0 &&
                      lstat(path_.c_str(), &namedFile) == 0 &&
                      openedFile.st_ino == namedFile.st_ino && S_ISREG(openedFile.st_mode) &&
                      ftruncate(file, 0) == 0;
  if (!locked) {
    close(file);
    errno = EBUSY;
    return recordError(OpenResult::inUse);
  }
  handle_ = file;
  exists_ = true;
  if (replaces) {
    // Keeps the file's owner if the system permits it; failing to do so is not an error.
    if (fchown(file, replaced.st_uid, replaced.st_gid) != 0) errno = 0;
    if (fchmod(file, replaced.st_mode & 0777) != 0) return recordError(OpenResult::failed);
  }
  return OpenResult::opened;
}

bool TemporaryFile::write(const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t count = ::write(fileOf(handle_), bytes, size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return recordError();
    bytes += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

bool TemporaryFile::flush() {
  return fsync(fileOf(handle_)) == 0 || recordError();
}

bool TemporaryFile::renameToTarget() {
  if (std::rename(path_.c_str(), target_.c_str()) != 0) return recordError();
  exists_ = false;
  // Flushes the folder, so that the new name is on the disk too. Not every file system supports it.
  const std::string folder = std::filesystem::path(target_).parent_path().string();
  const int directory = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
  if (directory >= 0) {
    fsync(directory);
    close(directory);
  }
  return true;
}

}  // namespace radiashafts::platform
