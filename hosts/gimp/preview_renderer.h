// Works on a small picture on a thread of its own, so that the dialog goes on.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

#include <glib.h>

#include "hosts/gimp/drawable.h"
#include "hosts/gimp/session.h"

namespace radiashafts::gimp {

class PreviewRenderer {
 public:
  struct Result {
    Picture picture;
    std::string failure;          // empty, or why the picture has no rays
    std::optional<Values> found;  // with the light that was found
  };
  // Called on the thread of the dialog.
  using Ready = std::function<void(const Result&)>;
  PreviewRenderer(Picture picture, Ready ready);

  // Ends the work that goes on.
  ~PreviewRenderer();
  PreviewRenderer(const PreviewRenderer&) = delete;
  PreviewRenderer& operator=(const PreviewRenderer&) = delete;

  // Renders with these values as soon as the work before is done. Only the newest ones wait.
  void render(Values values) { ask({std::move(values), false}); }

  // The same, with the light that is found in the picture.
  void findLight(Values values) { ask({std::move(values), true}); }

 private:
  struct Wish {
    Values values;
    bool findsLight;
  };

  void ask(Wish wish);
  void work();
  Result fulfil(Session& session, const Wish& wish);
  static gboolean deliver(gpointer renderer);
  static int goesOn(void* renderer, double done);

  const Picture picture_;
  const Ready ready_;
  std::mutex mutex_;
  std::condition_variable wake_;
  bool isClosing_ = false;
  std::optional<Wish> wish_;
  std::optional<Result> result_;  // not delivered yet
  guint delivery_ = 0;            // the source that will deliver it
  std::thread thread_;
};

}  // namespace radiashafts::gimp
