// A cursor of the module's resources.
#pragma once

#include <windows.h>

namespace radiashafts {

class ModuleCursor {
 public:
  explicit ModuleCursor(int resource) : resource_(resource) {}
  ~ModuleCursor() { release(); }
  ModuleCursor(const ModuleCursor&) = delete;
  ModuleCursor& operator=(const ModuleCursor&) = delete;

  void load();
  // Shows the arrow where this cursor is shown.
  void release();
  HCURSOR get() const { return cursor_; }  // null when it is not loaded

 private:
  int resource_;
  HCURSOR cursor_ = nullptr;
};

}  // namespace radiashafts
