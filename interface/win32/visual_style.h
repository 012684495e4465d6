// Gives the windows made in its life the system's current visual style, whatever the host's.
#pragma once

#include <windows.h>

namespace radiashafts {

// The module itself, which carries the resources.
HINSTANCE moduleInstance();

class VisualStyle {
 public:
  VisualStyle();
  ~VisualStyle();
  VisualStyle(const VisualStyle&) = delete;
  VisualStyle& operator=(const VisualStyle&) = delete;

 private:
  HANDLE context_;
  ULONG_PTR cookie_ = 0;
  bool active_ = false;
};

}  // namespace radiashafts
