#include "platform/host_call.h"
#include <windows.h>

#include <atomic>

#include "platform/floating_point.h"
#include "platform/win32/host_context.h"

namespace radiashafts::platform {
namespace {

// Workers look too, and find that it is another thread's.
std::atomic<HostContext*> standing{nullptr};

}  // namespace

HostContext::HostContext() : thread_(GetCurrentThreadId()), outer_(standing) {
  GetCurrentActCtx(&context_);
  standing = this;
}

HostContext::~HostContext() {
  standing = outer_;
  if (context_ != nullptr) ReleaseActCtx(context_);
}

HostCall::HostCall() {
  const HostContext* host = standing;
  if (host == nullptr || host->thread_ != GetCurrentThreadId()) return;
  if (ActivateActCtx(host->context_, &cookie_) == FALSE) cookie_ = 0;
}

// Also where the host has left a context of its own behind.
HostCall::~HostCall() {
  if (cookie_ != 0) DeactivateActCtx(DEACTIVATE_ACTCTX_FLAG_FORCE_EARLY_DEACTIVATION, cookie_);
  setDefaultFloatingPoint();
}

}  // namespace radiashafts::platform
