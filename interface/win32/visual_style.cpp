#include "interface/win32/visual_style.h"

#include <commctrl.h>

extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace radiashafts {
namespace {

VisualStyle* current = nullptr;  // the innermost one

}  // namespace

HINSTANCE moduleInstance() {
  return reinterpret_cast<HINSTANCE>(&__ImageBase);
}

VisualStyle::VisualStyle() : outer_(current) {
  ACTCTXW request{};
  request.cbSize = sizeof request;
  request.dwFlags = ACTCTX_FLAG_RESOURCE_NAME_VALID | ACTCTX_FLAG_HMODULE_VALID;
  request.hModule = moduleInstance();
  request.lpResourceName = MAKEINTRESOURCEW(2);  // id of the manifest
  wchar_t path[1024];
  constexpr DWORD capacity = sizeof path / sizeof *path;
  const DWORD length = GetModuleFileNameW(moduleInstance(), path, capacity);
  if (length > 0 && length < capacity) request.lpSource = path;
  context_ = CreateActCtxW(&request);
  current = this;
  active_ = context_ != INVALID_HANDLE_VALUE && ActivateActCtx(context_, &cookie_) != FALSE;

  INITCOMMONCONTROLSEX controls{sizeof controls, ICC_STANDARD_CLASSES | ICC_BAR_CLASSES};
  InitCommonControlsEx(&controls);
}

VisualStyle::~VisualStyle() {
  current = outer_;
  // The flag allows for contexts that a callback of the host has left active.
  if (active_) DeactivateActCtx(DEACTIVATE_ACTCTX_FLAG_FORCE_EARLY_DEACTIVATION, cookie_);
  if (context_ != INVALID_HANDLE_VALUE) ReleaseActCtx(context_);
}

VisualStyle::Reactivation::Reactivation() {
  if (current == nullptr || !current->active_) return;
  if (ActivateActCtx(current->context_, &cookie_) == FALSE) cookie_ = 0;
}

VisualStyle::Reactivation::~Reactivation() {
  if (cookie_ != 0) DeactivateActCtx(DEACTIVATE_ACTCTX_FLAG_FORCE_EARLY_DEACTIVATION, cookie_);
}

}  // namespace radiashafts
