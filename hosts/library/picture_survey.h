// A picture in small, for those who look for something in it.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "standin/picture.h"

namespace radiashafts::hosts {

// One value for each cell of the picture; cells are squares of pixels.
struct Map {
  int width, height;
  std::vector<float> values;

  Map(int mapWidth, int mapHeight)
      : width(mapWidth),
        height(mapHeight),
        values(static_cast<std::size_t>(mapWidth) * static_cast<std::size_t>(mapHeight)) {}
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
           static_cast<std::size_t>(x);
  }
  float at(int x, int y) const { return values[index(x, y)]; }
  double diagonal() const { return std::hypot(width, height); }
};

// Means over some pixels of each cell. NaN counts as 0.
struct Survey {
  int cellSide;  // pixels
  Map weight;    // alpha and mask, 0 to 1
  // Times the weight. Red counts as much as green: suns and lamps are warm. Above 1 in a float
  // picture whose light is not clipped.
  Map brightness;
  Map lightness;                        // of the HSL model, 0 to 1, times the weight
  std::array<double, 256> histogram{};  // weights by lightness

  Survey(int side, int width, int height)
      : cellSide(side),
        weight(width, height),
        brightness(width, height),
        lightness(width, height) {}
};

// The mask may be null.
Survey survey(const standin::Picture& picture, const standin::Mask* mask);

// The mean brightness around each cell, 0 where nothing near has a weight: a Gaussian blur. sigma
// is in diagonals of the map.
Map softBrightness(const Survey& picture, double sigma);

}  // namespace radiashafts::hosts
