#include "tests/support/test_pictures.h"

#include <cstring>

#include "hostapi/types.h"

namespace radiashafts::test {
namespace {

double uniform(Random& random, double low, double high) {
  return std::uniform_real_distribution<double>(low, high)(random);
}

// Edges of the range come up often: full, empty, and equal channels.
double randomSample(Random& random, int depth) {
  const double range = depth == 8 ? 255.0 : depth == 16 ? 32768.0 : 1.0;
  const int kind = std::uniform_int_distribution<int>(0, 9)(random);
  if (kind == 0) return 0.0;
  if (kind == 1) return range;
  return uniform(random, 0.0, depth == 32 && kind == 2 ? 1.5 : range);
}

template <class Sample>
void storeSample(std::uint8_t* to, double value) {
  const auto sample = static_cast<Sample>(value);
  std::memcpy(to, &sample, sizeof sample);
}

template <class Sample>
double loadSample(const std::uint8_t* from) {
  Sample sample;
  std::memcpy(&sample, from, sizeof sample);
  return sample;
}

void store(standin::Picture& picture, std::size_t index, double value) {
  std::uint8_t* to = picture.bytes.data() + index * picture.sampleBytes();
  switch (picture.depth) {
    case 8:
      return storeSample<std::uint8_t>(to, value);
    case 16:
      return storeSample<std::uint16_t>(to, value);
    default:
      return storeSample<float>(to, value);
  }
}

double load(const standin::Picture& picture, std::size_t index) {
  const std::uint8_t* from = picture.bytes.data() + index * picture.sampleBytes();
  switch (picture.depth) {
    case 8:
      return loadSample<std::uint8_t>(from);
    case 16:
      return loadSample<std::uint16_t>(from);
    default:
      return loadSample<float>(from);
  }
}

}  // namespace

standin::Picture randomPicture(Random& random, int configuration, int width, int height,
                               int extraPlanes) {
  standin::Picture picture;
  picture.width = width;
  picture.height = height;
  picture.depth = configuration <= 6 ? 32 : configuration <= 12 ? 16 : 8;
  picture.hasAlpha = (configuration - 1) % 6 < 3;
  picture.colorPlanes = (configuration - 1) % 3 + 1;
  picture.planes = picture.colorPlanes + (picture.hasAlpha ? 1 : 0) + extraPlanes;
  picture.allocate();
  for (std::size_t i = 0; i < picture.sampleCount(); ++i) {
    store(picture, i, randomSample(random, picture.depth));
  }
  return picture;
}

standin::Mask randomMask(Random& random, int width, int height) {
  standin::Mask mask{width, height, {}};
  mask.bytes.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (auto& byte : mask.bytes) byte = static_cast<std::uint8_t>(randomSample(random, 8));
  return mask;
}

judge::Values randomValues(Random& random) {
  judge::Values v;
  v.originX = uniform(random, -0.4, 1.4);
  v.originY = uniform(random, -0.4, 1.4);
  v.intensity = uniform(random, 0.0, 4.0);
  v.rayLength = uniform(random, 0.05, 1.0);
  v.radius = uniform(random, 0.1, 3.0);
  v.contrast = uniform(random, 0.0, 0.5);
  v.gamma = uniform(random, 0.4, 2.5);
  v.colorBalance = uniform(random, -1.0, 1.0);
  v.hue = uniform(random, -1.0, 1.0);
  v.saturation = uniform(random, -1.0, 1.0);
  v.lightness = uniform(random, -0.4, 0.4);
  v.selectionLow = uniform(random, 0.0, 100.0);
  v.selectionHigh = uniform(random, 100.0, 255.0);
  v.selectionSoften = uniform(random, 0.0, 2.0);
  v.selectionClimax = uniform(random, -1.0, 1.0);
  for (double& c : v.colorLow) c = uniform(random, 0.0, 1.0);
  for (double& c : v.colorHigh) c = uniform(random, 0.0, 1.0);
  v.useImageColor = uniform(random, 0.0, 1.0) < 0.5;
  return v;
}

standin::Script scriptOf(const judge::Values& v) {
  standin::Script script;
  const auto put = [&script](const char(&key)[5], standin::ScriptValue value) {
    script.emplace_back(hostapi::fourCharacterCode(key), value);
  };
  put("ORIX", v.originX);
  put("ORIY", v.originY);
  put("INTE", v.intensity);
  put("RALE", v.rayLength);
  put("RADI", v.radius);
  put("CONT", v.contrast);
  put("GAMA", v.gamma);
  put("COBA", v.colorBalance);
  put("IMCO", v.useImageColor);
  put("HSLH", v.hue);
  put("HSLS", v.saturation);
  put("HSLL", v.lightness);
  put("SELL", v.selectionLow);
  put("SELH", v.selectionHigh);
  put("SELS", v.selectionSoften);
  put("SELC", v.selectionClimax);
  put("COLR", v.colorLow[0]);
  put("COLG", v.colorLow[1]);
  put("COLB", v.colorLow[2]);
  put("COHR", v.colorHigh[0]);
  put("COHG", v.colorHigh[1]);
  put("COHB", v.colorHigh[2]);
  put("MODE", v.mode);
  put("BLND", v.blendMode);
  put("SHOW", v.selectionShow);
  return script;
}

judge::Picture judgePicture(const standin::Picture& picture) {
  judge::Picture result{picture.width,
                        picture.height,
                        picture.planes,
                        picture.depth,
                        picture.colorPlanes,
                        picture.hasAlpha,
                        {}};
  result.samples.resize(picture.sampleCount());
  for (std::size_t i = 0; i < result.samples.size(); ++i) result.samples[i] = load(picture, i);
  return result;
}

standin::Picture storedPicture(const judge::Picture& picture, const standin::Picture& like) {
  standin::Picture result = like;
  for (std::size_t i = 0; i < picture.samples.size(); ++i) store(result, i, picture.samples[i]);
  return result;
}

}  // namespace radiashafts::test
