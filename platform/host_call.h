// Calls from the module into its host.
#pragma once

#include <cstdint>

namespace radiashafts::platform {

// RAII around a call into the host. On a thread with a HostContext the host's activation context is
// active during the call; afterwards the default floating-point state is set again.
class HostCall {
 public:
  HostCall();
  ~HostCall();
  HostCall(const HostCall&) = delete;
  HostCall& operator=(const HostCall&) = delete;

 private:
  std::uintptr_t cookie_ = 0;
};

// Calls a proc of the host and returns its result.
template <class Proc, class... Arguments>
auto callHost(Proc proc, Arguments... arguments) {
  const HostCall call;
  return proc(arguments...);
}

}  // namespace radiashafts::platform
