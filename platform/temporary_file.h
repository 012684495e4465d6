#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace radiashafts::platform {

// A file on its way to another's place. A step that fails is false and tells why in error().
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& place);
  ~TemporaryFile();  // removes what was not put in place
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  // Takes the name for this object alone, with what a process that ended left under it.
  enum class Taken { own, byAnother, failed };
  Taken open();
  bool write(const char* bytes, std::size_t size);
  bool flush();  // to the disk
  bool putInPlace();
  const std::string& error() const { return error_; }

 private:
  bool failed();  // notes the system's last error
  Taken refused(Taken why) {
    failed();
    return why;
  }

  std::string place_;
  std::string path_;
  std::string error_;
  std::intptr_t handle_ = -1;
  bool opened_ = false;  // and not yet in place
};

}  // namespace radiashafts::platform
