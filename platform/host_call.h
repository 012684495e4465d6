// Calls from the module into its host.
#pragma once

#include "platform/floating_point.h"

namespace radiashafts::platform {

// Stands around a call into the host, which may leave another floating-point state behind.
class HostCall {
 public:
  HostCall() = default;
  ~HostCall() { setDefaultFloatingPoint(); }
  HostCall(const HostCall&) = delete;
  HostCall& operator=(const HostCall&) = delete;
};

// Calls a proc of the host and gives its answer.
template <class Proc, class... Arguments>
auto callHost(Proc proc, Arguments... arguments) {
  const HostCall call;
  return proc(arguments...);
}

}  // namespace radiashafts::platform
