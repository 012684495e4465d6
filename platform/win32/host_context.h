#pragma once

#include <windows.h>

namespace radiashafts::platform {

// Saves the calling thread's current activation context, which is the host's. During the lifetime
// of this object HostCall activates it for every call that the thread makes into the host.
class HostContext {
 public:
  HostContext();
  ~HostContext();
  HostContext(const HostContext&) = delete;
  HostContext& operator=(const HostContext&) = delete;

 private:
  friend class HostCall;
  DWORD thread_;
  HANDLE context_ = nullptr;  // null: the process's default context
  HostContext* outer_;
};

}  // namespace radiashafts::platform
