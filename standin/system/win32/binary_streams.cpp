#include "standin/system/binary_streams.h"

#include <cstdio>

#include <fcntl.h>
#include <io.h>

namespace radiashafts::standin {

void useBinaryStreams() {
  _setmode(_fileno(stdin), _O_BINARY);
  _setmode(_fileno(stdout), _O_BINARY);
}

}  // namespace radiashafts::standin
