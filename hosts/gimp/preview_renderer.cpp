#include "hosts/gimp/preview_renderer.h"

#include <exception>
#include <utility>

namespace radiashafts::gimp {

PreviewRenderer::PreviewRenderer(Picture picture, Ready ready)
    : picture_(std::move(picture)), ready_(std::move(ready)), thread_([this] { work(); }) {}

PreviewRenderer::~PreviewRenderer() {
  {
    const std::lock_guard lock(mutex_);
    isClosing_ = true;
  }
  wake_.notify_one();
  thread_.join();
  if (delivery_ != 0) g_source_remove(delivery_);
}

void PreviewRenderer::ask(Wish wish) {
  {
    const std::lock_guard lock(mutex_);
    wish_ = std::move(wish);
  }
  wake_.notify_one();
}

void PreviewRenderer::work() {
  Session session;
  for (;;) {
    Wish wish{};
    {
      std::unique_lock lock(mutex_);
      wake_.wait(lock, [this] { return isClosing_ || wish_; });
      if (isClosing_) return;
      wish = std::move(*wish_);
      wish_.reset();
    }
    Result result = fulfil(session, wish);
    const std::lock_guard lock(mutex_);
    result_ = std::move(result);
    if (delivery_ == 0) delivery_ = g_idle_add(deliver, this);
  }
}

PreviewRenderer::Result PreviewRenderer::fulfil(Session& session, const Wish& wish) {
  Result result{picture_, {}, {}};
  try {
    if (session == nullptr) session = openSession();
    setValues(session, wish.values);
    const radiashafts_picture view = result.picture.view();
    if (wish.findsLight) {
      check(session, radiashafts_find_light(session.get(), &view, nullptr, goesOn, this));
      result.found = valuesOf(session);
    }
    check(session, radiashafts_render(session.get(), &view, nullptr, &view, goesOn, this));
  } catch (const std::exception& failure) {
    result.failure = failure.what();
  }
  return result;
}

// A render is shown even when newer values wait: while the mouse moves, the picture follows.
int PreviewRenderer::goesOn(void* renderer, double /*done*/) {
  auto& self = *static_cast<PreviewRenderer*>(renderer);
  const std::lock_guard lock(self.mutex_);
  return self.isClosing_ ? 0 : 1;
}

gboolean PreviewRenderer::deliver(gpointer renderer) {
  auto& self = *static_cast<PreviewRenderer*>(renderer);
  std::optional<Result> result;
  {
    const std::lock_guard lock(self.mutex_);
    result.swap(self.result_);
    self.delivery_ = 0;
  }
  if (result) self.ready_(*result);
  return G_SOURCE_REMOVE;
}

}  // namespace radiashafts::gimp
