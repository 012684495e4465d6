#include "platform/host_call.h"

#include "platform/floating_point.h"

namespace radiashafts::platform {

HostCall::HostCall() = default;

HostCall::~HostCall() {
  setDefaultFloatingPoint();
}

}  // namespace radiashafts::platform
