#include "tests/support/test_pictures.h"

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
    judge::store(picture, i, randomSample(random, picture.depth));
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
  // The default or an end of the range half of the time.
  const auto draw = [&random](double& value, double low, double high) {
    const int kind = std::uniform_int_distribution<int>(0, 5)(random);
    if (kind == 1) value = low;
    if (kind == 2) value = high;
    if (kind > 2) value = uniform(random, low, high);
  };
  draw(v.originX, -0.4, 1.4);
  draw(v.originY, -0.4, 1.4);
  draw(v.intensity, 0.0, 5.0);
  draw(v.rayLength, 0.0, 1.0);
  draw(v.radius, 0.0, 5.0);
  draw(v.contrast, 0.0, 2.0);
  draw(v.gamma, 0.1, 3.0);  // less gives floats that are no numbers
  draw(v.colorBalance, -1.0, 1.0);
  draw(v.hue, -1.0, 1.0);
  draw(v.saturation, -1.0, 1.0);
  draw(v.lightness, -1.0, 1.0);
  draw(v.selectionLow, 0.0, 255.0);
  draw(v.selectionHigh, 0.0, 255.0);
  draw(v.selectionSoften, 0.0, 3.0);
  draw(v.selectionClimax, -1.0, 1.0);
  for (double& c : v.colorLow) draw(c, 0.0, 1.0);
  for (double& c : v.colorHigh) draw(c, 0.0, 1.0);
  v.useImageColor = uniform(random, 0.0, 1.0) < 0.5;
  return v;
}

standin::Script scriptOf(const judge::Values& v) {
  using standin::ScriptValue;
  const ScriptValue values[] = {
      v.originX,         v.originY,      v.intensity,    v.rayLength,     v.radius,
      v.contrast,        v.gamma,        v.colorBalance, v.useImageColor, v.hue,
      v.saturation,      v.lightness,    v.selectionLow, v.selectionHigh, v.selectionSoften,
      v.selectionClimax, v.colorLow[0],  v.colorLow[1],  v.colorLow[2],   v.colorHigh[0],
      v.colorHigh[1],    v.colorHigh[2], v.mode,         v.blendMode,     v.selectionShow};
  constexpr char keys[] =
      "ORIXORIYINTERALERADICONTGAMACOBAIMCOHSLHHSLSHSLLSELL"
      "SELHSELSSELCCOLRCOLGCOLBCOHRCOHGCOHB"
      "MODEBLNDSHOW";
  standin::Script script;
  const char* key = keys;
  for (const ScriptValue& value : values) {
    script.emplace_back(hostapi::fourCharacterCode({key[0], key[1], key[2], key[3], '\0'}), value);
    key += 4;
  }
  return script;
}

}  // namespace radiashafts::test
