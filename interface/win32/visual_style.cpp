#include "interface/win32/visual_style.h"

#include <commctrl.h>

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace radiashafts {

HINSTANCE moduleInstance() {
  return reinterpret_cast<HINSTANCE>(&__ImageBase);
}

VisualStyle::VisualStyle() {
  ACTCTXA request{};
  request.cbSize = sizeof request;
  request.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
  request.hModule = moduleInstance();
  request.lpResourceName = MAKEINTRESOURCEA(2);  // the manifest
  char path[MAX_PATH];
  const DWORD length = GetModuleFileNameA(moduleInstance(), path, sizeof path);
  if (length > 0 && length < sizeof path) request.lpSource = path;
  context_ = CreateActCtxA(&request);
  active_ = context_ != INVALID_HANDLE_VALUE && ActivateActCtx(context_, &cookie_) != FALSE;

  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_STANDARD_CLASSES | ICC_BAR_CLASSES};
  InitCommonControlsEx(&controls);
}

VisualStyle::~VisualStyle() {
  if (active_) DeactivateActCtx(0, cookie_);
  if (context_ != INVALID_HANDLE_VALUE) ReleaseActCtx(context_);
}

}  // namespace radiashafts
