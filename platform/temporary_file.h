#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace radiashafts::platform {

// A temporary file that replaces the target when it is complete. A failed step returns false and
// sets error().
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& target);
  ~TemporaryFile();  // deletes the temporary file unless it was renamed
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  // Creates and locks the temporary file, or takes over one that an ended process left behind.
  // inUse: another thread or process has it open.
  enum class OpenResult { opened, inUse, failed };
  OpenResult open();
  bool write(const char* bytes, std::size_t size);
  bool flush();  // to the disk
  bool renameToTarget();
  const std::string& error() const { return error_; }

 private:
  bool recordError();  // stores the system's last error in error_; returns false
  OpenResult recordError(OpenResult result) {
    recordError();
    return result;
  }

  std::string target_;
  std::string path_;
  std::string error_;
  std::intptr_t handle_ = -1;
  bool exists_ = false;  // created and not yet renamed to the target
};

}  // namespace radiashafts::platform
