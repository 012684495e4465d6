// The host's window, which owns the dialogs.
#pragma once

#include <windows.h>

#include "hostapi/filter_record.h"

namespace radiashafts {

// The window is disabled while the dialogs are open. It may belong to another thread, which may
// process no messages while the filter runs, so calls wait for it with a timeout only.
class HostWindow {
 public:
  HostWindow() = default;
  ~HostWindow() { enable(); }
  HostWindow(const HostWindow&) = delete;
  HostWindow& operator=(const HostWindow&) = delete;

  // The host's window as the owner of the dialogs. Null when the host has none, or when its thread
  // does not respond: a window shares its owner's input queue and would get no input.
  HWND ownerFor(const hostapi::FilterRecord& record);
  void disable();
  void enable();
  // Whether its thread still processes messages; true without a window.
  bool isResponding() const;

 private:
  HWND owner_ = nullptr;
  HWND disabled_ = nullptr;  // the top-level window to enable again
};

}  // namespace radiashafts
