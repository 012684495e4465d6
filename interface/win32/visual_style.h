// Gives the windows made in its life the system's current visual style, whatever the host's. Calls
// into the host keep the host's.
#pragma once

#include <windows.h>

#include "platform/win32/host_context.h"

namespace radiashafts {

// The module itself, which carries the resources.
HINSTANCE moduleInstance();

class VisualStyle {
 public:
  VisualStyle();
  ~VisualStyle();
  VisualStyle(const VisualStyle&) = delete;
  VisualStyle& operator=(const VisualStyle&) = delete;

  // Gives it to what runs in the life of this as well: a loop of the host's may have called.
  class Again {
   public:
    Again();
    ~Again();
    Again(const Again&) = delete;
    Again& operator=(const Again&) = delete;

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
