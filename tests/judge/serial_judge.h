// A second, plain and serial implementation of the whole render. It exists only for the tests: it
// shares no code with the production render apart from the power function, favours clarity over
// speed, and its results are what the production render must reproduce.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "standin/picture.h"

namespace judge {

using radiashafts::standin::Picture;

// A sample in the depth's own scale. Storing a value cuts off its fraction at 8 and 16 bits.
double sampleAt(const Picture& picture, std::size_t index);
void store(Picture& picture, std::size_t index, double value);

struct Values {
  double originX = 0.5, originY = 0.5;  // as fractions of the picture's size
  double intensity = 2.0, rayLength = 1.0, radius = 2.0;
  double contrast = 0.0, gamma = 1.0, colorBalance = 0.0;
  double hue = 0.0, saturation = 0.0, lightness = 0.0;
  double selectionLow = 0.0, selectionHigh = 255.0;  // 0..255 at every depth
  double selectionSoften = 0.0, selectionClimax = 1.0;
  double colorLow[3] = {1.0, 1.0, 1.0}, colorHigh[3] = {1.0, 1.0, 1.0};
  bool useImageColor = true;
  int mode = 1;           // 1 straight, anything else smooth
  int blendMode = 3;      // 1..23
  int selectionShow = 1;  // 1 rays, 2 selected image, 3 selection only
};

// Renders `input` and returns the output, which starts as a copy of the input. `mask` holds
// width * height bytes or is null. The view scales are image pixels per pixel of the picture.
Picture render(const Picture& input, const std::uint8_t* mask, const Values& values,
               double viewScaleX = 1.0, double viewScaleY = 1.0);

struct FloatImage {
  int width, height, channels;
  std::vector<float> samples;

  // The first sample of a pixel.
  std::size_t index(int x, int y) const {
    return (static_cast<std::size_t>(y) * width + x) * channels;
  }
};

// The two smears, in place, from an origin in whole pixels.
void straightRays(FloatImage& image, int originX, int originY, double length);
void smoothRays(FloatImage& image, int originX, int originY, double length);

}  // namespace judge
