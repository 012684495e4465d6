#include "standin/system/binary_streams.h"

namespace radiashafts::standin {

void useBinaryStreams() {}

}  // namespace radiashafts::standin
