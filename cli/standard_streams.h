// Pictures from standard input and to standard output. The picture libraries need files in which
// they can go back, so both pass through a temporary file.
#pragma once

#include <filesystem>
#include <string>

#include "cli/command_line.h"

namespace radiashafts::cli {

// A file in a folder of its own among the temporary files; both are deleted with this object.
class TemporaryPicture {
 public:
  // name is what users call it: standard input. The extension has a dot, or is empty. Throws a
  // Failure with the exit code when there is no place for temporary files.
  TemporaryPicture(std::string name, const std::string& extension, ExitCode exitCode);
  ~TemporaryPicture();
  TemporaryPicture(const TemporaryPicture&) = delete;
  TemporaryPicture& operator=(const TemporaryPicture&) = delete;

  const std::filesystem::path& path() const { return path_; }
  // The text of a message with the user's name in the place of the path.
  std::string named(std::string text) const;

 private:
  std::string name_;
  std::filesystem::path path_;
};

// Reads all of standard input. Throws a Failure.
void receive(const TemporaryPicture& file);
// Writes the file to standard output, and deletes it. Throws a Failure.
void send(const TemporaryPicture& file);

}  // namespace radiashafts::cli
