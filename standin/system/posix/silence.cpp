#include "standin/system/silence.h"

#include <fcntl.h>
#include <unistd.h>

namespace radiashafts::standin {

SilencedStandardError::SilencedStandardError() : savedDescriptor_(dup(STDERR_FILENO)) {
  const int nullDevice = open("/dev/null", O_WRONLY);
  dup2(nullDevice, STDERR_FILENO);
  close(nullDevice);
}

SilencedStandardError::~SilencedStandardError() {
  dup2(savedDescriptor_, STDERR_FILENO);
  close(savedDescriptor_);
}

}  // namespace radiashafts::standin
