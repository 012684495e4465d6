#include "interface/win32/window_place.h"

#include "interface/model/window_layout.h"

namespace radiashafts {
namespace {

Box boxOf(const RECT& rect) {
  return {rect.left, rect.top, rect.right, rect.bottom};
}

}  // namespace

std::optional<WindowPlace> windowPlace(HWND window) {
  WINDOWPLACEMENT placement{};
  placement.length = sizeof placement;
  MONITORINFO monitor{};
  monitor.cbSize = sizeof monitor;
  RECT shown{};
  if (GetWindowPlacement(window, &placement) == FALSE) return std::nullopt;
  GetWindowRect(window, &shown);
  GetMonitorInfoA(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
  return WindowPlace{placeOnScreen(boxOf(placement.rcNormalPosition), boxOf(shown),
                                   boxOf(monitor.rcMonitor), boxOf(monitor.rcWork)),
                     placement.showCmd};
}

}  // namespace radiashafts
