#include "hosts/library/light_finder.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <numeric>
#include <type_traits>
#include <vector>

namespace radiashafts::hosts {
namespace {

using standin::Mask;
using standin::Picture;

// Found by trial on photographs (tools/judge_auto). Lengths are in diagonals of the picture.
constexpr double softness = 0.012;      // the blur that removes glints
constexpr double lightSize = 0.04;      // the blur that weighs region against region
constexpr double centerRadius = 0.1;    // of the part whose centre is taken
constexpr double leastContrast = 0.33;  // between the light and the median of the picture
constexpr double shiningShare = 0.1;    // of the picture, above the threshold

constexpr int mapSide = 192;          // cells
constexpr int samplesPerSide = 4;     // of a cell, at least, where it has as many pixels
constexpr float maximumFloat = 1e4F;  // so bright is a sun in a picture of unclipped light

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
  double diagonal() const { return std::hypot(width, height); }
};

struct Measured {
  float brightness;  // luma; above 1 in a float picture whose light is not clipped
  float lightness;   // of the HSL model, 0 to 1
  float weight;      // alpha and mask, 0 to 1
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
    return {0.299F * shown(r) + 0.587F * shown(g) + 0.114F * shown(b), std::min(lightness, 1.0F),
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

// The picture in small. Means over the samples of a cell.
struct Survey {
  int cellSide;                         // pixels
  Map weight;                           // of the samples
  Map brightness, lightness;            // times the weight
  std::array<double, 256> histogram{};  // weights by lightness

  Survey(int side, int width, int height)
      : cellSide(side),
        weight(width, height),
        brightness(width, height),
        lightness(width, height) {}
};

template <class Sample>
Survey survey(const Picture& picture, const Mask* mask, float scale) {
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

Survey survey(const Picture& picture, const Mask* mask) {
  switch (picture.depth) {
    case 8:
      return survey<std::uint8_t>(picture, mask, 255);
    case 16:
      return survey<std::uint16_t>(picture, mask, 32768);
    default:
      return survey<float>(picture, mask, 1);
  }
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
        sum += share * map.values[map.index(i, y)];
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

// The blurred brightness, 0 where nothing has a weight.
Map softBrightness(const Survey& picture) {
  Map soft = blurred(picture.brightness, softness);
  const Map weight = blurred(picture.weight, softness);
  for (std::size_t i = 0; i < soft.values.size(); ++i) {
    const float w = weight.values[i];
    soft.values[i] = picture.weight.values[i] > 0 ? soft.values[i] / w : 0;
  }
  return soft;
}

// How much each cell counts as light: the square of what it is brighter than most of the picture.
// Empty where nothing is much brighter.
std::optional<Map> lightShares(const Survey& picture) {
  Map soft = softBrightness(picture);
  std::vector<float> sorted;
  for (std::size_t i = 0; i < soft.values.size(); ++i) {
    if (picture.weight.values[i] > 0) sorted.push_back(soft.values[i]);
  }
  if (sorted.empty()) return std::nullopt;
  std::sort(sorted.begin(), sorted.end());
  const float median = sorted[sorted.size() / 2];
  const float contrast = sorted.back() - median;
  if (contrast < leastContrast) return std::nullopt;
  const float tenth = sorted[sorted.size() * 9 / 10];
  const float threshold = std::max(tenth, median + 0.6F * contrast);
  for (std::size_t i = 0; i < soft.values.size(); ++i) {
    const float above = std::max(soft.values[i] - threshold, 0.0F);
    soft.values[i] = above * above * picture.weight.values[i];
  }
  return soft;
}

struct Center {
  double x, y;       // cells
  double lightness;  // mean of the light around it
};

// The centre of the light around a cell: a mean, taken again around itself.
Center centerAround(int cell, const Map& shares, const Survey& picture) {
  const int columns = shares.width;
  const int row = cell / columns;
  Center center{static_cast<double>(cell - row * columns), static_cast<double>(row), 0};
  const double radius = centerRadius * shares.diagonal();
  for (int pass = 0; pass < 5; ++pass) {
    Center sum{};
    double weight = 0;
    for (int y = 0; y < shares.height; ++y) {
      for (int x = 0; x < shares.width; ++x) {
        const std::size_t i = shares.index(x, y);
        const double share = shares.values[i];
        if (share == 0 || std::hypot(x - center.x, y - center.y) > radius) continue;
        sum.x += share * x;
        sum.y += share * y;
        sum.lightness += share * picture.lightness.values[i] / picture.weight.values[i];
        weight += share;
      }
    }
    if (weight == 0) break;
    center = {sum.x / weight, sum.y / weight, sum.lightness / weight};
  }
  return center;
}

// The lightness of the brightest part of the picture, but less than that of the light itself.
int lowestShining(const Survey& picture, double lightness) {
  const auto& histogram = picture.histogram;
  const double whole = std::accumulate(histogram.begin(), histogram.end(), 0.0);
  int low = 255;
  for (double above = histogram[255]; low > 0 && above < shiningShare * whole;) {
    above += histogram[static_cast<std::size_t>(--low)];
  }
  return std::min(low, static_cast<int>(0.9 * lightness * 255));
}

}  // namespace

std::optional<Light> findLight(const Picture& picture, const Mask* mask) {
  const Survey small = survey(picture, mask);
  const std::optional<Map> shares = lightShares(small);
  if (!shares) return std::nullopt;
  const Map regions = blurred(*shares, lightSize);
  const auto brightest = std::max_element(regions.values.begin(), regions.values.end());
  const Center center =
      centerAround(static_cast<int>(brightest - regions.values.begin()), *shares, small);
  const auto position = [&small](double cells, int pixels) {
    return std::min((cells + 0.5) * small.cellSide / pixels, 1.0);
  };
  return Light{position(center.x, picture.width), position(center.y, picture.height),
               lowestShining(small, center.lightness)};
}

}  // namespace radiashafts::hosts
