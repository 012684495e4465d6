// Key files: how parameters move over the frames of a sequence. They are text as preset files are,
// tokens separated by white space:
//
//   interpolation smooth
//   frame 1     Origin 0.2 0.3  Intensity 2.0
//   frame 120   Origin 0.6 0.25
//   frame 200   Intensity 0.5
//
// "frame" and a number begin a key, which holds the parameters that it names; the frames ascend.
// A switch is 0 or 1, a list's entry its number. "interpolation" is linear where nothing else is
// said before the first key.
#pragma once

#include <array>
#include <string>
#include <vector>

#include "cli/key_track.h"
#include "standin/script.h"

namespace radiashafts::cli {

class KeyFile {
 public:
  // Throws a Failure with one line that names the file, the line in it and the word.
  explicit KeyFile(const std::string& file);

  const std::string& name() const { return name_; }
  // Whether a key has the parameter, which is counted as in the effect's table.
  bool moves(std::size_t parameter) const { return !tracks_[parameter].empty(); }
  // Puts the values at a frame into the script.
  void apply(standin::Script& script, int frame) const;
  // One line for each value outside its range. The filter clamps such values.
  const std::vector<std::string>& notes() const { return notes_; }

 private:
  class Reader;

  std::string name_;
  Interpolation interpolation_ = Interpolation::linear;
  std::array<std::vector<Key>, effectTable.size()> tracks_;
  std::vector<std::string> notes_;
};

}  // namespace radiashafts::cli
