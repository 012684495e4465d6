#include "standin/system/silence.h"

#include <fcntl.h>
#include <io.h>

namespace radiashafts::standin {
namespace {

constexpr int standardError = 2;

}  // namespace

SilencedStandardError::SilencedStandardError() : kept_(_dup(standardError)) {
  const int nothing = _open("NUL", _O_WRONLY);
  _dup2(nothing, standardError);
  _close(nothing);
}

SilencedStandardError::~SilencedStandardError() {
  _dup2(kept_, standardError);
  _close(kept_);
}

}  // namespace radiashafts::standin
