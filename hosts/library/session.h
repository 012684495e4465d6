// What stands behind the C interface. Failures are exceptions: SessionError, PresetError,
// std::bad_alloc, or another std::exception of the module's loading.
#pragma once

#include <stdexcept>
#include <string>

#include "hosts/library/radiashafts-host.h"
#include "parameters/effect_parameters.h"
#include "standin/picture.h"
#include "standin/script.h"

namespace radiashafts::hosts {

struct SessionError : std::runtime_error {
  SessionError(radiashafts_result code, const std::string& text)
      : std::runtime_error(text), result(code) {}
  radiashafts_result result;
};

// All sessions of a process share the module.
class Session {
 public:
  Session();
  ~Session();
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;

  // numbers are valueCount of the parameter's kind.
  void set(const char* name, const double* numbers);
  void get(const char* name, double* numbers) const;
  void reset() { effect_.Reset(nullptr); }
  EffectParameters& effect() { return effect_; }

  void render(const radiashafts_picture& picture, const radiashafts_mask* mask,
              const radiashafts_picture& result, radiashafts_progress_function progress,
              void* context);

  // Throws a SessionError where there is no light.
  void findLight(const radiashafts_picture& picture, const radiashafts_mask* mask,
                 radiashafts_progress_function progress, void* context);

  std::string error;  // of the last call

 private:
  std::size_t indexOf(const char* name) const;
  void takePicture(const radiashafts_picture& picture, const radiashafts_mask* mask);

  EffectParameters effect_;
  standin::Picture picture_;
  standin::Picture rendered_;
  standin::Mask mask_;
};

}  // namespace radiashafts::hosts
