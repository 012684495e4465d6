// Values chosen for one picture.
#pragma once

#include <cstdint>
#include <functional>

#include "standin/picture.h"
#include "standin/script.h"
#include "standin/stand_in_host.h"

namespace radiashafts::hosts {

class AutoValues {
 public:
  // Finds the light and sets origin and selection low in the script, and lowers the intensity where
  // more than 1 % more of the pixels would clip, which renders of the picture in small tell.
  // Without a light the intensity alone is set. Values in given are left as they are.
  AutoValues(const standin::Picture& picture, const standin::Mask* mask, standin::Script script,
             const standin::Script& given, standin::EntryPoint entry,
             const std::function<bool()>& abortWanted);

  bool lightFound() const { return lightFound_; }
  const standin::Script& script() const { return script_; }
  // What was chosen.
  const standin::Script& chosen() const { return chosen_; }

  // Lowers the intensity and returns true when the picture rendered in full clips too much still.
  bool lowerIntensity(const standin::Picture& rendered);

 private:
  void choose(std::uint32_t key, double value);

  standin::Script script_;
  standin::Script chosen_;
  bool lightFound_ = false;
  double allowedClipping_;  // share of the pixels
};

}  // namespace radiashafts::hosts
