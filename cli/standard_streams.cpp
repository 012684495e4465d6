#include "cli/standard_streams.h"

#include <fstream>
#include <iostream>
#include <iterator>
#include <random>

#include "cli/batch.h"
#include "standin/system/binary_streams.h"
#include "standin/system/interrupt.h"

namespace radiashafts::cli {
namespace {

namespace fs = std::filesystem;

fs::path newFolder(const std::string& name, ExitCode exitCode) {
  std::error_code error;
  fs::path folder =
      fs::temp_directory_path(error) / ("radiashafts-" + std::to_string(std::random_device()()));
  const bool made = !error && fs::create_directory(folder, error);
  if (!made) {
    throw Failure{exitCode, name + ": no folder for temporary files" +
                                (error ? ", " + error.message() : std::string())};
  }
  fs::permissions(folder, fs::perms::owner_all, error);
  return folder;
}

}  // namespace

TemporaryPicture::TemporaryPicture(std::string name, const std::string& extension,
                                   ExitCode exitCode)
    : name_(std::move(name)), path_(newFolder(name_, exitCode) / ("picture" + extension)) {}

TemporaryPicture::~TemporaryPicture() {
  std::error_code ignored;
  fs::remove_all(path_.parent_path(), ignored);
}

std::string TemporaryPicture::named(std::string text) const {
  const std::string path = path_.string();
  for (std::size_t at = 0; (at = text.find(path, at)) != std::string::npos; at += name_.size()) {
    text.replace(at, path.size(), name_);
  }
  return text;
}

// The input may never end: an interrupt ends the program while no file is there.
void receive(const TemporaryPicture& file) {
  standin::useBinaryStreams();
  std::string bytes;
  {
    const standin::ExitOnInterrupt exitOnInterrupt(interruptedLine);
    bytes.assign(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
  }
  if (std::cin.bad()) throw Failure{exitInput, "standard input cannot be read"};
  std::ofstream stream(file.path(), std::ios::binary);
  stream << bytes << std::flush;
  if (!stream) throw Failure{exitInput, file.path().string() + ": cannot be written"};
}

void send(const TemporaryPicture& file) {
  standin::useBinaryStreams();
  std::ifstream stream(file.path(), std::ios::binary);
  const std::string bytes((std::istreambuf_iterator<char>(stream)),
                          std::istreambuf_iterator<char>());
  stream.close();
  std::error_code ignored;
  std::filesystem::remove_all(file.path().parent_path(), ignored);
  const standin::ExitOnInterrupt exitOnInterrupt(interruptedLine);
  std::cout << bytes << std::flush;
  if (!std::cout) throw Failure{exitOutput, "standard output cannot be written"};
}

}  // namespace radiashafts::cli
