#include "tests/judge/serial_judge.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "image/power.h"

namespace judge {
namespace {

using radiashafts::power;

constexpr double perByte = 0.00392156862745098;
constexpr int gammaEntries = 32768;

// Colours that the picture lacks stay 0, so grey is (v, 0, 0) and two channels (c0, c1, 0).
struct Pixel {
  double c[3] = {0.0, 0.0, 0.0};
  double a = 0.0;
};

struct Hsl {
  double h, s, l;  // hue as a sextant number, 0..6
};

// What is no number becomes 0.
double clampTo(double value, double high) {
  return value > 0.0 ? std::min(value, high) : 0.0;
}

double largest(const Pixel& p) {
  return std::max({p.c[0], p.c[1], p.c[2]});
}

Hsl hslOf(double r, double g, double b) {
  const double high = std::max({r, g, b});
  const double low = std::min({r, g, b});
  Hsl hsl{0.0, 0.0, (low + high) * 0.5};
  if (low == high) return hsl;
  const double d = high - low;
  hsl.s = hsl.l <= 0.5 ? d / (low + high) : d / ((2.0 - high) - low);
  hsl.h = r == high ? (g - b) / d : g == high ? (b - r) / d + 2.0 : (r - g) / d + 4.0;
  if (hsl.h < 0.0) hsl.h += 6.0;
  return hsl;
}

double hueToChannel(double p, double q, double h) {
  if (h < 0.0) h += 6.0;
  if (h > 6.0) h -= 6.0;
  if (h < 1.0) return (q - p) * h + p;
  if (h < 3.0) return q;
  return h < 4.0 ? (q - p) * (4.0 - h) + p : p;
}

// The results are rounded to single precision, which the renders depend on.
void hslToRgb(const Hsl& hsl, double rgb[3]) {
  const double q = hsl.l > 0.5 ? (hsl.l + hsl.s) - hsl.l * hsl.s : (hsl.s + 1.0) * hsl.l;
  const double p = 2.0 * hsl.l - q;
  const double hues[3] = {hsl.h + 2.0, hsl.h, hsl.h - 2.0};
  for (int k = 0; k < 3; ++k) {
    rgb[k] = static_cast<float>(hsl.s == 0.0 ? hsl.l : hueToChannel(p, q, hues[k]));
  }
}

// All channels at a fractional position. Past the right and bottom edges the edge repeats; just
// outside the left and top ones the fraction is negative and the taps extrapolate.
void sampleBilinear(const FloatImage& image, double x, double y, double out[4]) {
  const int ix = static_cast<int>(x);
  const int iy = static_cast<int>(y);
  const double fx = x - ix;
  const double fy = y - iy;
  const int right = std::min(ix + 1, image.width - 1);
  const int below = std::min(iy + 1, image.height - 1);
  const std::size_t taps[4] = {image.index(ix, iy), image.index(right, iy),
                               image.index(right, below), image.index(ix, below)};
  const double weights[4] = {(1.0 - fx) * (1.0 - fy), fx * (1.0 - fy), fx * fy, (1.0 - fx) * fy};
  for (int k = 0; k < image.channels; ++k) {
    out[k] = image.samples[taps[0] + k] * weights[0];
    for (int tap = 1; tap < 4; ++tap) out[k] += image.samples[taps[tap] + k] * weights[tap];
  }
}

// In place. The walk starts at the side that the offset points away from, so that only the edge
// where it ends reads pixels already written.
void moveSubPixel(FloatImage& image, double dx, double dy) {
  for (int row = 0; row < image.height; ++row) {
    const int y = dy < 0.0 ? image.height - 1 - row : row;
    for (int column = 0; column < image.width; ++column) {
      const int x = dx < 0.0 ? image.width - 1 - column : column;
      double sample[4];
      sampleBilinear(image, x + dx, y + dy, sample);
      std::copy_n(sample, image.channels, &image.samples[image.index(x, y)]);
    }
  }
}

// Both in the scale 0 to 1.
double overlay(double base, double ray) {
  if (base < 0.5) return 2.0 * base * ray;
  return 1.0 - 2.0 * (1.0 - std::min(ray, 1.0)) * (1.0 - std::min(base, 1.0));
}

// One render: what the picture's pixels look like, and the steps with the values.
struct Render {
  Render(const Picture& picture, const Values& values)
      : input(picture),
        v(values),
        colors(picture.colorPlanes),
        alpha(picture.hasAlpha),
        isFloat(picture.depth == 32),
        range(isFloat               ? 1.0
              : picture.depth == 16 ? 32768.0
                                    : 255.0),
        unit(isFloat               ? 1.0
             : picture.depth == 16 ? 3.0517578125e-05
                                   : perByte) {
    const double low = v.selectionLow * perByte;
    const double high = v.selectionHigh * perByte;
    selects = low != 0.0 || high != 1.0 || v.selectionClimax != 0.0 || v.selectionSoften != 0.0;
    selectsOnly = v.selectionShow == 3 || (v.selectionShow == 1 && !v.useImageColor);
    from = std::min(low, high);
    to = std::max(low, high);
    if (!isFloat) {  // float lightness has no upper end to wrap around
      const int turns = static_cast<int>(from);
      from -= turns;
      to -= turns;
      if (from + 1.0 <= to) to = from + 1.00001;
    }
  }

  Picture run(const std::uint8_t* mask, double scaleX, double scaleY) {
    Picture output = input;
    const int channels = colors + (alpha ? 1 : 0);
    const int w = input.width;
    const int h = input.height;
    if (v.selectionShow != 1) {
      for (int i = 0; i < w * h; ++i) {
        double selected[4];
        selectPixel(i, mask, selected);
        for (int k = 0; k < channels; ++k) store(output, sampleIndex(i) + k, selected[k]);
      }
      return output;
    }

    FloatImage rays{w, h, channels, {}};
    for (int i = 0; i < w * h; ++i) {
      double selected[4];
      selectPixel(i, mask, selected);
      rays.samples.insert(rays.samples.end(), selected, selected + channels);
    }
    const int originX = static_cast<int>(w * v.originX);
    const int originY = static_cast<int>(h * v.originY);
    double shiftX = 0.0;
    double shiftY = 0.0;
    if (v.rayLength != 0.0) {
      // Half a pixel one way before the smear, and the same way back when the rays are read.
      shiftX = originX < 0 ? -0.5 : 0.5;
      shiftY = originY < 0 ? -0.5 : 0.5;
      moveSubPixel(rays, -shiftX, -shiftY);
      (v.mode == 1 ? straightRays : smoothRays)(rays, originX, originY, v.rayLength);
    }

    fillGammaTable();
    const double reach =
        v.radius * std::sqrt(scaleY * scaleY * (1.0 * h * h) + scaleX * scaleX * (1.0 * w * w));
    const double inverse = 1.0 / (reach <= 0.0 ? 1e-06 : reach);
    for (int i = 0; i < w * h; ++i) {
      const int x = i % w;
      const int y = i / w;
      double sample[4] = {};
      sampleBilinear(rays, x + shiftX, y + shiftY, sample);
      Pixel ray;
      std::copy_n(sample, colors, ray.c);
      if (alpha) ray.a = sample[colors];
      const double dx = (originX - x) * inverse * scaleX;
      const double dy = (originY - y) * inverse * scaleY;
      const double falloff = 1.0 - std::sqrt(dx * dx + dy * dy);
      shade(ray, falloff <= 0.0 ? 0.0001 : falloff);

      Pixel base = pixelAt(i);
      blend(base, ray);
      for (int k = 0; k < colors; ++k) {  // float values may exceed full scale
        const bool fits = isFloat && !(base.c[k] < 0.0);
        store(output, sampleIndex(i) + k, blended(fits ? base.c[k] : clampTo(base.c[k], range)));
      }
      if (alpha) store(output, sampleIndex(i) + colors, blended(base.a));
    }
    return output;
  }

  std::size_t sampleIndex(int pixel) const {
    return static_cast<std::size_t>(pixel) * input.planes;
  }

  Pixel pixelAt(int i) const {
    Pixel p;
    for (int k = 0; k < colors; ++k) p.c[k] = sampleAt(input, sampleIndex(i) + k);
    if (alpha) p.a = sampleAt(input, sampleIndex(i) + colors);
    return p;
  }

  // Every NaN of a blended picture is the same.
  double blended(double value) const {
    return stored(isFloat && std::isnan(value) ? std::numeric_limits<double>::quiet_NaN() : value);
  }

  // As the picture's samples hold the value.
  double stored(double value) const {
    if (isFloat) return static_cast<float>(value);
    return std::isnan(value) ? 0.0 : std::trunc(clampTo(value, range == 255.0 ? 255.0 : 65535.0));
  }

  // Brightness by the colours alone. Two channels do not make up the lost weight.
  double luma(const Pixel& p) const {
    if (colors == 1) return p.c[0];
    const double two = 0.292687786 * p.c[0] + 0.552149646 * p.c[1];
    return colors == 2 ? two : two + 0.155162568 * p.c[2];
  }

  void divideAlphaOut(Pixel& p, double by) const {
    for (int k = 0; k < colors; ++k) p.c[k] = p.c[k] * range / by;
  }

  // ---- Selection -------------------------------------------------------------------------------

  // The selected form of a pixel, under the mask. Each step is rounded to what the target stores:
  // floats for the rays, the picture's own samples when it is the output.
  void selectPixel(int i, const std::uint8_t* mask, double out[4]) const {
    const Pixel p = selectedPixel(pixelAt(i));
    for (int k = 0; k < colors + (alpha ? 1 : 0); ++k) {
      const auto store = [this](double value) {
        return v.selectionShow == 1 ? static_cast<float>(value) : stored(value);
      };
      out[k] = store(k < colors ? p.c[k] : p.a);
      if (mask != nullptr) out[k] = store(out[k] * (mask[i] * perByte));
    }
  }

  // Alpha is multiplied by itself along with the colours.
  Pixel selectedPixel(const Pixel& picture) const {
    Pixel p = picture;
    if (alpha) {
      for (double& c : p.c) c *= picture.a / range;
      p.a *= picture.a / range;
    }
    if (!selects && selectsOnly) {
      std::fill_n(p.c, colors, range);
      p.a = range;
    } else if (selects) {
      const double share = selectedShare(picture);
      for (int k = 0; k < colors; ++k) p.c[k] = selectsOnly ? share * range : p.c[k] * share;
      if (!selectsOnly) p.a *= share;
    }
    return p;
  }

  // By the lightness of the colour times alpha, in single precision and as the picture stores it. A
  // value below the range gets one try a full turn up.
  double selectedShare(Pixel p) const {
    for (int k = 0; alpha && k < colors; ++k) {
      const float share = static_cast<float>(p.a) / static_cast<float>(range);
      p.c[k] = stored(static_cast<float>(p.c[k]) * share);
    }
    double l = hslOf(p.c[0] * unit, p.c[1] * unit, p.c[2] * unit).l;
    if (isFloat && l < 0.0) l = 0.0;
    const bool below = l < from;
    if (below) l += 1.0;
    if (below ? l >= to : l > to) return 0.0;
    if (!(v.selectionSoften > 0.0)) return 1.0;

    const double place = (l - from) * (to != from ? 1.0 / (to - from) : 1.0);
    const double peak = (v.selectionClimax + 1.0) * 0.5;
    double y = 1.0;
    if (place < peak) {
      y = place / peak;
    } else if (peak != 1.0) {
      y = 1.0 - (place - peak) / (1.0 - peak);
    }
    return power(y, v.selectionSoften);
  }

  // ---- Shading ---------------------------------------------------------------------------------

  void fillGammaTable() {
    exponent = 1.0 / std::max(v.gamma, 0.001);
    for (int i = 0; i < gammaEntries; ++i) {
      const float x = static_cast<float>(i) * 0x1.0002p-15F;  // close to 1/32767
      gammaTable.push_back(radiashafts::powerSingle(x, static_cast<float>(exponent)) *
                           static_cast<float>(range));
    }
  }

  // Turns a sample of the smeared selection into the finished ray colour.
  void shade(Pixel& p, double falloff) const {
    for (double& c : p.c) c *= v.intensity * falloff;
    p.a *= v.intensity * falloff;

    double t = luma(p);
    t = alpha ? t * p.a * unit * unit : t * unit;
    const double balance = v.colorBalance;
    t = balance >= 0.0 ? (1.0 - balance) * t + balance : (balance + 1.0) * t;
    for (int k = 0; k < colors; ++k) {
      const double low = v.colorLow[k];
      const double high = v.colorHigh[k];
      p.c[k] *= t < 0.5 ? low : t > 1.0 ? high : (high - low) * ((t - 0.5) * 2.0) + low;
      p.c[k] = contrasted(p.c[k]);
    }
    p.a = clampTo(p.a, range);
    if (alpha) {
      if (p.a < largest(p)) p.a = std::min(largest(p), range);
      if (p.a > 0.0) divideAlphaOut(p, p.a);
      p.a = clampTo(p.a, range);
    }
    for (int k = 0; !isFloat && k < colors; ++k) p.c[k] = clampTo(p.c[k], range);
    adjustHsl(p);
  }

  double contrasted(double c) const {
    const double lifted = v.contrast * (c + range * 0.5) + c;
    if (isFloat) return power(lifted, exponent);
    const double perEntry = range == 255.0 ? 128.49803921568628 : 0.999969482421875;
    const int entry = static_cast<int>(clampTo(lifted, range) * perEntry);
    return gammaTable[static_cast<std::size_t>(std::min(entry, gammaEntries - 1))];
  }

  void adjustHsl(Pixel& p) const {
    const double r = p.c[0] / range;
    const double g = p.c[1] / range;
    const double b = p.c[2] / range;
    Hsl hsl = hslOf(r, g, b);
    double s = v.saturation;
    if (s > 0.0) {  // weak colours are to stay weak
      const double chroma = std::max({std::abs(r - g), std::abs(r - b), std::abs(g - b)});
      const double full = power(s, 1e8);
      s = (1.0 - power(1e-8, chroma)) * s * (1.0 - full) + full * s;
    }
    if (hsl.h != 0.0) hsl.s = s > 0.0 ? hsl.s + (1.0 - hsl.s) * s : hsl.s * (s + 1.0);
    hsl.h += v.hue * 3.0;
    if (hsl.h > 6.0) {
      hsl.h -= 6.0;
    } else if (hsl.h < 0.0) {
      hsl.h += 6.0;
    }
    double rgb[3];
    hslToRgb(hsl, rgb);
    const double l = v.lightness;
    for (int k = 0; k < colors; ++k) {
      p.c[k] = (l >= 0.0 ? rgb[k] + (1.0 - rgb[k]) * l : rgb[k] * (l + 1.0)) * range;
    }
  }

  // ---- Blending --------------------------------------------------------------------------------

  // The modes that take the whole pixel or change alpha alone, then the others channel by channel
  // on premultiplied values.
  void blend(Pixel& base, const Pixel& ray) const {
    const int mode = v.blendMode;
    const double rayLuma = luma(ray) * (alpha ? ray.a * unit : 1.0);
    const double baseLuma = luma(base) * (alpha ? base.a * unit : 1.0);
    if (mode == 13 || mode == 14) {
      if (mode == 13 ? !(rayLuma <= baseLuma) : !(baseLuma <= rayLuma)) base = ray;
    } else if (mode == 19) {
      base.a = clampTo(base.a + rayLuma, range);
    } else if (mode == 20) {
      base.a = std::max(base.a - rayLuma, 0.0);
    } else if (mode == 21) {
      base.a = clampTo(base.a * rayLuma * unit, range);
    } else if (mode == 22) {
      base.a = clampTo(rayLuma, range);
    } else if (mode == 23) {
      base = ray;
    } else {
      blendColors(base, ray);
    }
  }

  void blendColors(Pixel& base, const Pixel& ray) const {
    const int mode = v.blendMode;
    const bool hslMode = mode >= 15 && mode <= 18;
    const double cover = alpha ? base.a * unit : 1.0;
    const double rho = alpha ? ray.a * unit : 1.0;
    Pixel under, over, mixed;  // the two pixels premultiplied
    for (int k = 0; k < colors; ++k) {
      under.c[k] = cover * base.c[k];
      over.c[k] = rho * ray.c[k];
    }
    if (hslMode) mixed = mixHsl(under, over);
    const double heaviest = 1.0 - (largest(ray) * unit) * rho;
    for (int k = 0; k < colors; ++k) {
      const double b = under.c[k];
      const double p = over.c[k];
      double c = hslMode ? mixed.c[k] : blendChannel(b, p, ray.c[k], heaviest);
      if (alpha) {
        if (mode == 1) c = (1.0 - rho) * cover * base.c[k] + rho * ray.c[k];
        if (mode == 7) c = (b - c) * (1.0 - rho) + c + (1.0 - cover) * p;
        if (mode == 8 || mode == 12) c = (c - b) * rho + b;
        if (mode == 4 || hslMode) c = (c - b) * rho + b + (1.0 - cover) * p;
      }
      base.c[k] = c;
    }
    if (alpha) finishAlpha(base, ray);
  }

  // What a channel of the ray makes of the base at full alpha: b and p are premultiplied, r is the
  // ray's plain value and `heaviest` the base's share under "max weight".
  double blendChannel(double b, double p, double r, double heaviest) const {
    const int mode = v.blendMode;
    if (mode == 2) return (b - p) * heaviest + p;
    if (mode == 3) return (1.0 - p * unit) * b + p;
    if (mode == 4) return overlay(b * unit, r * unit) * range;
    if (mode == 5) return b + p;
    if (mode == 6) return std::max(b - p, 0.0);
    if (mode == 7) return r * b * unit;
    if (mode == 8) return b / (p * unit + 0.0001);
    if (mode == 9) return std::abs(b - p);
    if (mode == 10) return (1.0 - p * unit) * b + (1.0 - b * unit) * p;
    if (mode == 11) return std::max(b, p);
    if (mode == 12) return std::min(b, p);
    return r;
  }

  // Modes hue, saturation, color and luminosity. Luminosity, too, takes the ray's hue.
  Pixel mixHsl(const Pixel& base, const Pixel& ray) const {
    const Hsl one = hslOf(base.c[0] * unit, base.c[1] * unit, base.c[2] * unit);
    const Hsl two = hslOf(ray.c[0] * unit, ray.c[1] * unit, ray.c[2] * unit);
    Hsl mixed{two.h, two.s, one.l};
    if (v.blendMode == 15) mixed.s = two.s == 0.0 ? 0.0 : one.s;
    if (v.blendMode == 16) mixed.h = one.h;
    if (v.blendMode == 18) mixed = {two.h, one.s, two.l};
    Pixel result;
    hslToRgb(mixed, result.c);
    for (double& c : result.c) c *= range;
    return result;
  }

  // Back from premultiplied, raising alpha where the colour needs it. Grey stays premultiplied but
  // in the modes "normal" and "overlay".
  void finishAlpha(Pixel& p, const Pixel& ray) const {
    const int mode = v.blendMode;
    if (mode == 1) p.a = (1.0 - ray.a * unit) * p.a + ray.a;
    if (mode == 4) p.a = clampTo(p.a, range);
    if (mode == 7 || (mode >= 15 && mode <= 18)) p.a = ray.a * (1.0 - p.a * unit) + p.a;
    const bool simple = mode == 1 || mode == 4;
    if (colors == 1 && !simple) return;
    const double most = largest(p);
    if (simple || most <= p.a) {
      if (p.a > 0.0) divideAlphaOut(p, p.a);
    } else if (most < range && most != 0.0) {
      p.a = most;
      divideAlphaOut(p, most);
    } else {
      p.a = range;
    }
  }

  const Picture& input;
  const Values& v;
  const int colors;
  const bool alpha, isFloat;
  const double range;  // full scale
  const double unit;   // brings a sample to 0..1
  bool selects, selectsOnly;
  double from, to;  // of the selected lightness
  double exponent = 1.0;
  std::vector<float> gammaTable;
};

// Calls with the address of a sample of the picture's type.
template <class Action>
auto withSample(const Picture& picture, std::size_t index, const Action& action) {
  auto* const at = const_cast<std::uint8_t*>(&picture.bytes[index * picture.sampleBytes()]);
  if (picture.depth == 8) return action(at);
  if (picture.depth == 16) return action(reinterpret_cast<std::uint16_t*>(at));
  return action(reinterpret_cast<float*>(at));
}

}  // namespace

double sampleAt(const Picture& picture, std::size_t index) {
  return withSample(picture, index, [](auto* sample) { return static_cast<double>(*sample); });
}

void store(Picture& picture, std::size_t index, double value) {
  withSample(picture, index, [value](auto* sample) {
    *sample = static_cast<std::remove_pointer_t<decltype(sample)>>(value);
  });
}

Picture render(const Picture& input, const std::uint8_t* mask, const Values& values,
               double viewScaleX, double viewScaleY) {
  return Render(input, values).run(mask, viewScaleX, viewScaleY);
}

}  // namespace judge
