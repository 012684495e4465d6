// Activation context for windows: those created while a VisualStyle exists get the system's current
// visual style, whatever the host uses. Calls into the host run with the host's own context.
#pragma once

#include <windows.h>

#include "platform/win32/host_context.h"

namespace radiashafts {

// The handle of this module, which contains the resources.
HINSTANCE moduleInstance();

class VisualStyle {
 public:
  VisualStyle();
  ~VisualStyle();
  VisualStyle(const VisualStyle&) = delete;
  VisualStyle& operator=(const VisualStyle&) = delete;

  // RAII: activates the context of the current VisualStyle again, for a window procedure that a
  // message loop of the host has called.
  class Reactivation {
   public:
    Reactivation();
    ~Reactivation();
    Reactivation(const Reactivation&) = delete;
    Reactivation& operator=(const Reactivation&) = delete;

   private:
    ULONG_PTR cookie_ = 0;
  };

 private:
  platform::HostContext host_;
  HANDLE context_ = INVALID_HANDLE_VALUE;
  ULONG_PTR cookie_ = 0;
  bool active_ = false;
  VisualStyle* outer_;
};

}  // namespace radiashafts
