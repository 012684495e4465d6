#include "interface/win32/visual_style.h"

#include <commctrl.h>

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace radiashafts {
namespace {

VisualStyle* standing = nullptr;

}  // namespace

HINSTANCE moduleInstance() {
  return reinterpret_cast<HINSTANCE>(&__ImageBase);
}

VisualStyle::VisualStyle() : outer_(standing) {
  ACTCTXW request{};
  request.cbSize = sizeof request;
  request.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
  request.hModule = moduleInstance();
  request.lpResourceName = MAKEINTRESOURCEW(2);  // the manifest
  wchar_t path[1024];
  constexpr DWORD room = sizeof path / sizeof *path;
  const DWORD length = GetModuleFileNameW(moduleInstance(), path, room);
  if (length > 0 && length < room) request.lpSource = path;
  context_ = CreateActCtxW(&request);
  standing = this;
  active_ = context_ != INVALID_HANDLE_VALUE && ActivateActCtx(context_, &cookie_) != FALSE;

  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_STANDARD_CLASSES | ICC_BAR_CLASSES};
  InitCommonControlsEx(&controls);
}

VisualStyle::~VisualStyle() {
  standing = outer_;
  // Also where a callback of the host has left a context of its own behind.
  if (active_) DeactivateActCtx(DEACTIVATE_ACTCTX_FLAG_FORCE_EARLY_DEACTIVATION, cookie_);
  if (context_ != INVALID_HANDLE_VALUE) ReleaseActCtx(context_);
}

VisualStyle::Again::Again() {
  if (standing == nullptr || !standing->active_) return;
  if (ActivateActCtx(standing->context_, &cookie_) == FALSE) cookie_ = 0;
}

VisualStyle::Again::~Again() {
  if (cookie_ != 0) DeactivateActCtx(DEACTIVATE_ACTCTX_FLAG_FORCE_EARLY_DEACTIVATION, cookie_);
}

}  // namespace radiashafts
