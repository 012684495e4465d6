#include "standin/system/silence.h"

#include <fcntl.h>
#include <unistd.h>

namespace radiashafts::standin {

SilencedStandardError::SilencedStandardError() : kept_(dup(STDERR_FILENO)) {
  const int nothing = open("/dev/null", O_WRONLY);
  dup2(nothing, STDERR_FILENO);
  close(nothing);
}

SilencedStandardError::~SilencedStandardError() {
  dup2(kept_, STDERR_FILENO);
  close(kept_);
}

}  // namespace radiashafts::standin
