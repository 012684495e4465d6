// Pictures and parameter values for tests, made from a seed.
#pragma once

#include <cstdint>
#include <random>

#include "standin/picture.h"
#include "standin/script.h"
#include "tests/judge/serial_judge.h"

namespace radiashafts::test {

using Random = std::mt19937_64;

// What a picture of a configuration is made of, with extra planes behind the layout's own.
standin::Picture randomPicture(Random& random, int configuration, int width, int height,
                               int extraPlanes = 0);
standin::Mask randomMask(Random& random, int width, int height);

// Values all over the parameters' ranges; mode, blend mode and show mode stay at their defaults.
judge::Values randomValues(Random& random);

// The script that sets a filter to the values.
standin::Script scriptOf(const judge::Values& values);

}  // namespace radiashafts::test
