#include "platform/pump.h"

namespace radiashafts::platform {

bool pumpPendingMessages() {
  return true;
}

}  // namespace radiashafts::platform
