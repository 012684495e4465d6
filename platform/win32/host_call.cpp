#include "platform/host_call.h"
#include <windows.h>

#include <atomic>

#include "platform/floating_point.h"
#include "platform/win32/host_context.h"

namespace radiashafts::platform {
namespace {

// The innermost HostContext. Atomic because worker threads read it too and compare its thread id.
std::atomic<HostContext*> innermost{nullptr};

}  // namespace

HostContext::HostContext() : thread_(GetCurrentThreadId()), outer_(innermost) {
  GetCurrentActCtx(&context_);
  innermost = this;
}

HostContext::~HostContext() {
  innermost = outer_;
  if (context_ != nullptr) ReleaseActCtx(context_);
}

HostCall::HostCall() {
  const HostContext* host = innermost;
  if (host == nullptr || host->thread_ != GetCurrentThreadId()) return;
  if (ActivateActCtx(host->context_, &cookie_) == FALSE) cookie_ = 0;
}

// Forced, because the host may have left a context of its own active.
HostCall::~HostCall() {
  if (cookie_ != 0) DeactivateActCtx(DEACTIVATE_ACTCTX_FLAG_FORCE_EARLY_DEACTIVATION, cookie_);
  setDefaultFloatingPoint();
}

}  // namespace radiashafts::platform
