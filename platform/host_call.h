// Calls from the module into its host.
#pragma once

#include <cstdint>

namespace radiashafts::platform {

// Stands around a call into the host. Where the calling thread shows windows of the module's own
// style, the host gets its own style back meanwhile; the floating-point state that it leaves behind
// is set right.
class HostCall {
 public:
  HostCall();
  ~HostCall();
  HostCall(const HostCall&) = delete;
  HostCall& operator=(const HostCall&) = delete;

 private:
  std::uintptr_t cookie_ = 0;
};

// Calls a proc of the host and gives its answer.
template <class Proc, class... Arguments>
auto callHost(Proc proc, Arguments... arguments) {
  const HostCall call;
  return proc(arguments...);
}

}  // namespace radiashafts::platform
