#pragma once

#include <windows.h>

namespace radiashafts::platform {

// Keeps the activation context that the calling thread has now: that of the host. Calls into the
// host that the thread makes in its life run in it, whatever is active by then.
class HostContext {
 public:
  HostContext();
  ~HostContext();
  HostContext(const HostContext&) = delete;
  HostContext& operator=(const HostContext&) = delete;

 private:
  friend class HostCall;
  DWORD thread_;
  HANDLE context_ = nullptr;  // null is the process's own
  HostContext* outer_;
};

}  // namespace radiashafts::platform
