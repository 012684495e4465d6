#include "platform/whole_file.h"

#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <system_error>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/file_rights.h"
#include "platform/temporary_file.h"

namespace radiashafts::platform {
namespace {

int fileOf(std::intptr_t handle) {
  return static_cast<int>(handle);
}

// The file that a link leads to, so that the link stays one.
std::string resolved(const std::string& path) {
  std::error_code error;
  const std::filesystem::path place = std::filesystem::canonical(path, error);
  return error ? path : place.string();
}

// Under its name followed by "tmp"; that of a name that leaves no room for it is cut well short of
// any such name.
std::string besideOf(const std::string& place) {
  constexpr std::size_t longest = 255 - 3;  // bytes that file systems take, less those behind it
  constexpr std::size_t cut = 200;
  const std::filesystem::path path(place);
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
  // A pipe is not waited for.
  const int file = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (file < 0) {
    if (errno != ENOENT) result.state = FileState::refused;
    return result;
  }
  result.state = readContent(file, result.content);
  close(file);
  return result;
}

TemporaryFile::TemporaryFile(const std::string& place)
    : place_(resolved(place)), path_(besideOf(place_)) {}

TemporaryFile::~TemporaryFile() {
  if (opened_) unlink(path_.c_str());
  if (handle_ >= 0) close(fileOf(handle_));
}

bool TemporaryFile::failed() {
  error_ = std::generic_category().message(errno);
  return false;
}

TemporaryFile::Taken TemporaryFile::open() {
  struct stat old {};
  const bool replaces = stat(place_.c_str(), &old) == 0;
  // A folder that may be written would let a file be replaced that may not.
  if (replaces && !mayChange(place_)) {
    errno = EACCES;
    return refused(Taken::failed);
  }
  constexpr int flags = O_WRONLY | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC;
  const int file = ::open(path_.c_str(), flags, 0666);
  if (file < 0) return refused(Taken::failed);
  struct stat taken {};
  struct stat named {};
  const bool own = flock(file, LOCK_EX | LOCK_NB) == 0 && fstat(file, &taken) == 0 &&
                   lstat(path_.c_str(), &named) == 0 && taken.st_ino == named.st_ino &&
                   S_ISREG(taken.st_mode) && ftruncate(file, 0) == 0;
  if (!own) {
    close(file);
    errno = EBUSY;
    return refused(Taken::byAnother);
  }
  handle_ = file;
  opened_ = true;
  if (replaces) {
    // Another user's file stays that user's where the system lets it.
    if (fchown(file, old.st_uid, old.st_gid) != 0) errno = 0;
    if (fchmod(file, old.st_mode & 0777) != 0) return refused(Taken::failed);
  }
  return Taken::own;
}

bool TemporaryFile::write(const char* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t count = ::write(fileOf(handle_), bytes, size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return failed();
    bytes += count;
    size -= static_cast<std::size_t>(count);
  }
  return true;
}

bool TemporaryFile::flush() {
  return fsync(fileOf(handle_)) == 0 || failed();
}

bool TemporaryFile::putInPlace() {
  if (std::rename(path_.c_str(), place_.c_str()) != 0) return failed();
  opened_ = false;
  // The new name is to be on the disk too, where the file system can be asked for it.
  const std::string folder = std::filesystem::path(place_).parent_path().string();
  const int directory = ::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_CLOEXEC);
  if (directory >= 0) {
    fsync(directory);
    close(directory);
  }
  return true;
}

}  // namespace radiashafts::platform
