// The window that the host's user works in.
#pragma once

#include <windows.h>

#include "hostapi/filter_record.h"

namespace radiashafts {

// It rests while the dialogs stand over it. Its thread may be another than the caller's, and may
// look at no messages for as long as the filter runs: nothing here waits for it for long.
class HostWindow {
 public:
  HostWindow() = default;
  ~HostWindow() { wake(); }
  HostWindow(const HostWindow&) = delete;
  HostWindow& operator=(const HostWindow&) = delete;

  // The host's window as the owner of dialogs; null where there is none or it does not answer: the
  // input of a window and of its owner goes through one queue.
  HWND ownerFor(const hostapi::FilterRecord& record);
  void rest();
  void wake();
  // Whether its thread still looks at messages.
  bool answers() const;

 private:
  HWND owner_ = nullptr;
  HWND resting_ = nullptr;
};

}  // namespace radiashafts
