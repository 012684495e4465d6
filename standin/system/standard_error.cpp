#include "standin/system/standard_error.h"

#include <mutex>

#include <fcntl.h>
#include <unistd.h>

namespace radiashafts::standin {
namespace {

std::mutex mutex;
int silenceCount = 0;
int savedDescriptor = -1;  // of standard error while it is silenced

int openDescriptor() {
  return silenceCount > 0 ? savedDescriptor : STDERR_FILENO;
}

int openNullDevice() {
  const int device = open("/dev/null", O_WRONLY);
  return device >= 0 ? device : open("NUL", O_WRONLY);  // as it is called on Windows
}

}  // namespace

SilencedStandardError::SilencedStandardError() {
  const std::lock_guard lock(mutex);
  if (silenceCount++ > 0) return;
  savedDescriptor = dup(STDERR_FILENO);
  const int nothing = openNullDevice();
  dup2(nothing, STDERR_FILENO);
  close(nothing);
}

SilencedStandardError::~SilencedStandardError() {
  const std::lock_guard lock(mutex);
  if (--silenceCount > 0) return;
  dup2(savedDescriptor, STDERR_FILENO);
  close(savedDescriptor);
}

void writeError(std::string_view text) {
  const std::lock_guard lock(mutex);
  while (!text.empty()) {
    const auto written = write(openDescriptor(), text.data(), static_cast<unsigned>(text.size()));
    if (written <= 0) return;
    text.remove_prefix(static_cast<std::size_t>(written));
  }
}

bool errorIsTerminal() {
  const std::lock_guard lock(mutex);
  return isatty(openDescriptor()) != 0;
}

}  // namespace radiashafts::standin
