#include "standin/system/silence.h"

#include <fcntl.h>
#include <io.h>

namespace radiashafts::standin {
namespace {

constexpr int standardError = 2;

}  // namespace

SilencedStandardError::SilencedStandardError() : savedDescriptor_(_dup(standardError)) {
  const int nullDevice = _open("NUL", _O_WRONLY);
  _dup2(nullDevice, standardError);
  _close(nullDevice);
}

SilencedStandardError::~SilencedStandardError() {
  _dup2(savedDescriptor_, standardError);
  _close(savedDescriptor_);
}

}  // namespace radiashafts::standin
