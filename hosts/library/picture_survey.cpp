#include "hosts/library/picture_survey.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <type_traits>

namespace radiashafts::hosts {
namespace {

using standin::Mask;
using standin::Picture;

constexpr int mapSide = 192;          // cells
constexpr int samplesPerSide = 4;     // of a cell, at least, where it has as many pixels
constexpr float maximumFloat = 1e4F;  // so bright is a sun in a picture of unclipped light

struct Measured {
  float brightness;
  float lightness;  // of the HSL model, 0 to 1
  float weight;     // alpha and mask, 0 to 1
};

template <class Sample>
class PixelReader {
 public:
  // scale is the sample of full brightness.
  PixelReader(const Picture& picture, const Mask* mask, float scale)
      : picture_(picture), mask_(mask), toUnit_(1 / scale) {}

  Measured measure(int x, int y) const {
    const std::size_t pixel =
        static_cast<std::size_t>(y) * static_cast<std::size_t>(picture_.width) +
        static_cast<std::size_t>(x);
    const auto* const samples =
        reinterpret_cast<const Sample*>(picture_.bytes.data() + pixel * picture_.pixelBytes());
    const int lastColor = picture_.colorPlanes - 1;
    const float r = unit(samples[0]);
    const float g = unit(samples[std::min(1, lastColor)]);
    const float b = unit(samples[std::min(2, lastColor)]);
    const float lightness = (std::min({r, g, b}) + std::max({r, g, b})) / 2;
    float weight = picture_.hasAlpha ? std::min(unit(samples[lastColor + 1]), 1.0F) : 1.0F;
    if (mask_ != nullptr) weight *= static_cast<float>(mask_->bytes[pixel]) / 255;
    return {0.45F * shown(r) + 0.45F * shown(g) + 0.1F * shown(b), std::min(lightness, 1.0F),
            weight};
  }

 private:
  static constexpr bool isFloat = std::is_floating_point_v<Sample>;

  float unit(Sample sample) const {
    if constexpr (isFloat) return sample > 0 ? std::min(sample, maximumFloat) : 0;  // NaN is 0
    return static_cast<float>(sample) * toUnit_;
  }
  // Float pictures hold linear light; a screen shows it in about this way.
  static float shown(float value) { return isFloat ? std::sqrt(value) : value; }

  const Picture& picture_;
  const Mask* mask_;
  float toUnit_;
};

template <class Sample>
Survey surveySamples(const Picture& picture, const Mask* mask, float scale) {
  const int side = (std::max(picture.width, picture.height) + mapSide - 1) / mapSide;
  const int step = std::max(side / samplesPerSide, 1);
  const auto cells = [side](int pixels) { return (pixels + side - 1) / side; };
  Survey result(side, cells(picture.width), cells(picture.height));
  Map counts(result.weight.width, result.weight.height);
  const PixelReader<Sample> reader(picture, mask, scale);
  for (int y = 0; y < picture.height; y += step) {
    for (int x = 0; x < picture.width; x += step) {
      const Measured pixel = reader.measure(x, y);
      const std::size_t cell = counts.index(x / side, y / side);
      result.weight.values[cell] += pixel.weight;
      result.brightness.values[cell] += pixel.weight * pixel.brightness;
      result.lightness.values[cell] += pixel.weight * pixel.lightness;
      counts.values[cell] += 1;
      result.histogram[static_cast<std::size_t>(pixel.lightness * 255)] += pixel.weight;
    }
  }
  for (Map* map : {&result.weight, &result.brightness, &result.lightness}) {
    for (std::size_t i = 0; i < counts.values.size(); ++i) {
      if (counts.values[i] > 0) map->values[i] /= counts.values[i];
    }
  }
  return result;
}

// Blurs the rows and writes them as columns.
Map blurredAcross(const Map& map, const std::vector<float>& kernel) {
  Map result(map.height, map.width);
  const int reach = static_cast<int>(kernel.size()) - 1;
  for (int y = 0; y < map.height; ++y) {
    for (int x = 0; x < map.width; ++x) {
      float sum = 0, weight = 0;
      for (int i = std::max(x - reach, 0); i <= std::min(x + reach, map.width - 1); ++i) {
        const float share = kernel[static_cast<std::size_t>(std::abs(i - x))];
        sum += share * map.at(i, y);
        weight += share;
      }
      result.values[result.index(y, x)] = sum / weight;
    }
  }
  return result;
}

// A Gaussian blur; sigma is in diagonals of the map. Beyond the border there is nothing.
Map blurred(const Map& map, double sigma) {
  const double cells = sigma * map.diagonal();
  std::vector<float> kernel;
  for (int i = 0; i <= std::ceil(3 * cells); ++i) {
    kernel.push_back(static_cast<float>(std::exp(-0.5 * i * i / (cells * cells))));
  }
  return blurredAcross(blurredAcross(map, kernel), kernel);
}

}  // namespace

Survey survey(const Picture& picture, const Mask* mask) {
  switch (picture.depth) {
    case 8:
      return surveySamples<std::uint8_t>(picture, mask, 255);
    case 16:
      return surveySamples<std::uint16_t>(picture, mask, 32768);
    default:
      return surveySamples<float>(picture, mask, 1);
  }
}

Map softBrightness(const Survey& picture, double sigma) {
  Map soft = blurred(picture.brightness, sigma);
  const Map weight = blurred(picture.weight, sigma);
  for (std::size_t i = 0; i < soft.values.size(); ++i) {
    const float w = weight.values[i];
    soft.values[i] = w > 0 ? soft.values[i] / w : 0;
  }
  return soft;
}

}  // namespace radiashafts::hosts
