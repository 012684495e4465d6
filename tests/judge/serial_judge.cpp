#include "tests/judge/serial_judge.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <limits>

#include "image/power.h"
#include "tests/judge/serial_rays.h"

namespace judge {
namespace {

using radiashafts::power;
using radiashafts::powerSingle;

constexpr double kPerByte = 0.00392156862745098;
constexpr double kPerWord = 3.0517578125e-05;
constexpr int kGammaEntries = 32768;

// What the picture's pixels look like. At float depth `unit` is 1, which leaves products unchanged.
struct Layout {
  int colors;
  bool alpha;
  int depth;
  double range;     // full scale
  double unit;      // brings a sample to 0..1
  double unitRoom;  // largest value that the sample type can hold

  bool isFloat() const { return depth == 32; }
  int channels() const { return colors + (alpha ? 1 : 0); }
};

// Colour slots that the layout lacks stay 0, so grey is (v, 0, 0) and two channels (c0, c1, 0).
struct Pixel {
  double c[3] = {0.0, 0.0, 0.0};
  double a = 0.0;
};

struct Hsl {
  double h, s, l;  // hue as a sextant number, 0..6
};

Layout layoutOf(const Picture& picture) {
  const bool byte = picture.depth == 8;
  const bool word = picture.depth == 16;
  return {picture.colorChannels,
          picture.hasAlpha,
          picture.depth,
          byte   ? 255.0
          : word ? 32768.0
                 : 1.0,
          byte   ? kPerByte
          : word ? kPerWord
                 : 1.0,
          byte ? 255.0 : 65535.0};
}

// ---- Numbers -----------------------------------------------------------------------------------

// A NaN passes through unchanged.
double clampTo(double value, double high) {
  return value < 0.0 ? 0.0 : value > high ? high : value;
}

// The stored form of a value that needs no clamping to the range.
double stored(const Layout& layout, double value) {
  if (layout.isFloat()) return static_cast<double>(static_cast<float>(value));
  return truncated(clampTo(value, layout.unitRoom));
}

// The stored form of a finished colour channel. Float values may exceed full scale.
double storedColor(const Layout& layout, double value) {
  if (layout.isFloat()) return stored(layout, value < 0.0 ? 0.0 : value);
  return stored(layout, clampTo(value, layout.range));
}

// ---- Colour ------------------------------------------------------------------------------------

Hsl rgbToHsl(double r, double g, double b) {
  const double high = std::max(std::max(r, g), b);
  const double low = std::min(std::min(r, g), b);
  Hsl hsl{0.0, 0.0, (low + high) * 0.5};
  if (low == high) return hsl;
  const double d = high - low;
  hsl.s = hsl.l <= 0.5 ? d / (low + high) : d / ((2.0 - high) - low);
  if (r == high) {
    hsl.h = (g - b) / d;
  } else if (g == high) {
    hsl.h = (b - r) / d + 2.0;
  } else {
    hsl.h = (r - g) / d + 4.0;
  }
  if (hsl.h < 0.0) hsl.h += 6.0;
  return hsl;
}

double hueToChannel(double p, double q, double h) {
  if (h < 0.0) {
    h += 6.0;
  } else if (h > 6.0) {
    h -= 6.0;
  }
  if (h < 1.0) return (q - p) * h + p;
  if (h < 3.0) return q;
  if (h < 4.0) return (q - p) * (4.0 - h) + p;
  return p;
}

// The results are rounded to single precision, which the renders depend on.
void hslToRgb(const Hsl& hsl, double rgb[3]) {
  const double q = hsl.l > 0.5 ? (hsl.l + hsl.s) - hsl.l * hsl.s : (hsl.s + 1.0) * hsl.l;
  const double p = 2.0 * hsl.l - q;
  for (int k = 0; k < 3; ++k) {
    const double hue = k == 0 ? hsl.h + 2.0 : k == 1 ? hsl.h : hsl.h - 2.0;
    const double value = hsl.s == 0.0 ? hsl.l : hueToChannel(p, q, hue);
    rgb[k] = static_cast<double>(static_cast<float>(value));
  }
}

// Brightness by the colour channels alone. Fewer channels than three do not make up the lost
// weight.
double weighted(const Layout& layout, const Pixel& p) {
  if (layout.colors == 1) return p.c[0];
  const double two = 0.292687786 * p.c[0] + 0.552149646 * p.c[1];
  return layout.colors == 2 ? two : two + 0.155162568 * p.c[2];
}

// With fewer than three channels the empty slots make 0 take part, as it should.
double largest(const Pixel& p) {
  return std::max(std::max(p.c[0], p.c[1]), p.c[2]);
}

Pixel readPixel(const Picture& picture, const Layout& layout, std::size_t first) {
  Pixel p;
  for (int k = 0; k < layout.colors; ++k) {
    p.c[k] = picture.samples[first + static_cast<std::size_t>(k)];
  }
  if (layout.alpha) p.a = picture.samples[first + static_cast<std::size_t>(layout.colors)];
  return p;
}

// ---- Selection ---------------------------------------------------------------------------------

struct Axis {
  double lo, hi, scale, peak, exponent;
};

struct Selection {
  bool only;
  bool active;
  Axis hue, saturation, lightness;
};

Axis makeAxis(double low, double high, double climax, double soften, bool wraps) {
  double lo = std::min(low, high);
  double hi = std::max(low, high);
  if (wraps) {
    const int turns = truncated(lo >= 0.0 ? lo : lo - 1.0);
    lo -= turns;
    hi -= turns;
    if (lo + 1.0 <= hi) hi = lo + 1.00001;
  }
  return {lo, hi, hi != lo ? 1.0 / (hi - lo) : 1.0, (climax + 1.0) * 0.5, soften};
}

Selection makeSelection(const Values& values, const Layout& layout) {
  const double low = values.selectionLow * kPerByte;
  const double high = values.selectionHigh * kPerByte;
  const double climax = values.selectionClimax;
  const double soften = values.selectionSoften;
  Selection s;
  s.only = values.selectionShow == 3 || (values.selectionShow == 1 && !values.useImageColor);
  s.active = !(low == 0.0 && high == 1.0 && climax == 0.0 && soften == 0.0);
  s.hue = makeAxis(0.0, 1.0, 1.0, 0.0, true);
  s.saturation = s.hue;
  // Float lightness has no upper end to wrap around.
  s.lightness = makeAxis(low, high, climax, soften, !layout.isFloat());
  return s;
}

// Tests a value against the axis; a value below the range gets one try a full turn up, and keeps
// it.
bool passes(const Axis& axis, double& value) {
  if (value < axis.lo) {
    value += 1.0;
    return value < axis.hi;
  }
  return value <= axis.hi;
}

double shaped(const Axis& axis, double value) {
  const double p = (value - axis.lo) * axis.scale;
  double y = 1.0;
  if (p < axis.peak) {
    y = p / axis.peak;
  } else if (axis.peak != 1.0) {
    y = 1.0 - (p - axis.peak) / (1.0 - axis.peak);
  }
  return power(y, axis.exponent);
}

double selectionValue(const Selection& selection, const Layout& layout, const Pixel& p) {
  const double unit = layout.unit;
  const Hsl hsl = rgbToHsl(p.c[0] * unit, p.c[1] * unit, p.c[2] * unit);
  double v[3] = {hsl.h * 0.16666666666666666, hsl.s, hsl.l};
  if (layout.isFloat()) {
    v[0] = clampTo(v[0], 1.0);
    v[1] = clampTo(v[1], 1.0);
    if (v[2] < 0.0) v[2] = 0.0;
  }
  const Axis* axes[3] = {&selection.hue, &selection.saturation, &selection.lightness};
  for (int i = 0; i < 3; ++i) {
    if (!passes(*axes[i], v[i])) return 0.0;
  }
  double result = 1.0;
  for (int i = 0; i < 3; ++i) {
    if (axes[i]->exponent > 0.0) result *= shaped(*axes[i], v[i]);
  }
  return result;
}

// The colour that decides the selection: multiplied by alpha in single precision and, at integer
// depth, truncated back to the sample type.
Pixel decidingColor(const Layout& layout, Pixel p) {
  if (!layout.alpha) return p;
  const float alpha = static_cast<float>(p.a) / static_cast<float>(layout.range);
  for (int k = 0; k < layout.colors; ++k) {
    const float product = static_cast<float>(p.c[k]) * alpha;
    p.c[k] = stored(layout, static_cast<double>(product));
  }
  return p;
}

// The selected form of one picture pixel. Alpha is multiplied by itself along with the colours.
Pixel selectedPixel(const Selection& selection, const Layout& layout, const Pixel& picture) {
  Pixel p = picture;
  if (layout.alpha) {
    const double alpha = picture.a / layout.range;
    for (int k = 0; k < layout.colors; ++k) p.c[k] *= alpha;
    p.a *= alpha;
  }
  if (!selection.active) {
    if (!selection.only) return p;
    for (int k = 0; k < layout.colors; ++k) p.c[k] = layout.range;
    p.a = layout.range;
    return p;
  }
  const double sel = selectionValue(selection, layout, decidingColor(layout, picture));
  for (int k = 0; k < layout.colors; ++k) {
    p.c[k] = selection.only ? sel * layout.range : p.c[k] * sel;
  }
  if (!selection.only) p.a *= sel;
  return p;
}

double maskFactor(std::uint8_t mask) {
  return static_cast<double>(mask) * kPerByte;
}

// ---- Float images ------------------------------------------------------------------------------

// Reads all channels at a fractional position. Past the right and bottom edges the edge repeats;
// just outside the left and top ones the fraction is negative and the taps extrapolate.
void sampleBilinear(const FloatImage& image, double x, double y, double out[4]) {
  const int ix = truncated(x);
  const int iy = truncated(y);
  const double fx = x - ix;
  const double fy = y - iy;
  const int right = ix == image.width - 1 ? ix : ix + 1;
  const int below = iy == image.height - 1 ? iy : iy + 1;
  const std::size_t taps[4] = {image.index(ix, iy), image.index(right, iy),
                               image.index(right, below), image.index(ix, below)};
  const double weights[4] = {(1.0 - fx) * (1.0 - fy), fx * (1.0 - fy), fx * fy, (1.0 - fx) * fy};
  for (std::size_t k = 0; k < static_cast<std::size_t>(image.channels); ++k) {
    out[k] = static_cast<double>(image.samples[taps[0] + k]) * weights[0];
    for (int tap = 1; tap < 4; ++tap) {
      out[k] += static_cast<double>(image.samples[taps[tap] + k]) * weights[tap];
    }
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
      for (int k = 0; k < image.channels; ++k) {
        image.samples[image.index(x, y) + static_cast<std::size_t>(k)] =
            static_cast<float>(sample[k]);
      }
    }
  }
}

// ---- Blending ----------------------------------------------------------------------------------

double overlay(double u, double v) {
  if (u < 0.5) return 2.0 * u * v;
  return 1.0 - 2.0 * (1.0 - std::min(v, 1.0)) * (1.0 - std::min(u, 1.0));
}

// Modes hue, saturation, color and luminosity. Luminosity, too, takes the ray's hue.
Pixel mixHsl(const Layout& layout, const Pixel& base, const Pixel& ray, int mode) {
  const double unit = layout.unit;
  const Hsl one = rgbToHsl(base.c[0] * unit, base.c[1] * unit, base.c[2] * unit);
  const Hsl two = rgbToHsl(ray.c[0] * unit, ray.c[1] * unit, ray.c[2] * unit);
  Hsl mixed{two.h, two.s, one.l};
  if (mode == 15) mixed.s = two.s == 0.0 ? 0.0 : one.s;
  if (mode == 16) mixed.h = one.h;
  if (mode == 18) mixed = {two.h, one.s, two.l};
  Pixel result;
  hslToRgb(mixed, result.c);
  for (int k = 0; k < 3; ++k) result.c[k] = result.c[k] * layout.range;
  return result;
}

double blendLuma(const Layout& layout, const Pixel& p) {
  const double light = weighted(layout, p);
  return layout.alpha ? light * (p.a * layout.unit) : light;
}

void divideAlphaOut(const Layout& layout, Pixel& p, double alpha) {
  for (int k = 0; k < layout.colors; ++k) p.c[k] = p.c[k] * layout.range / alpha;
}

// Back from premultiplied, raising alpha where the colour needs it. Grey stays premultiplied.
void finishAlpha(const Layout& layout, Pixel& p) {
  if (layout.colors == 1) return;
  const double most = largest(p);
  if (most <= p.a) {
    if (p.a > 0.0) divideAlphaOut(layout, p, p.a);
  } else if (most < layout.range && most != 0.0) {
    p.a = most;
    divideAlphaOut(layout, p, most);
  } else {
    p.a = layout.range;
  }
}

bool rayWins(const Layout& layout, const Pixel& base, const Pixel& ray, int mode) {
  const double baseLuma = blendLuma(layout, base);
  const double rayLuma = blendLuma(layout, ray);
  return mode == 13 ? !(rayLuma <= baseLuma) : !(baseLuma <= rayLuma);
}

// What one channel of the ray makes of the base at full alpha: b and p are the two premultiplied
// values, r the ray's plain one, and `heaviest` the base's share under "max weight".
double blendChannel(const Layout& layout, double b, double p, double r, double heaviest,
                    double mixed, int mode) {
  const double unit = layout.unit;
  if (mode == 2) return (b - p) * heaviest + p;
  if (mode == 3) return (1.0 - p * unit) * b + p;
  if (mode == 4) return overlay(b * unit, r * unit) * layout.range;
  if (mode == 5) return b + p;
  if (mode == 6) return std::max(b - p, 0.0);
  if (mode == 7) return r * b * unit;
  if (mode == 8) return b / (p * unit + 0.0001);
  if (mode == 9) return std::abs(b - p);
  if (mode == 10) return (1.0 - p * unit) * b + (1.0 - b * unit) * p;
  if (mode == 11) return std::max(b, p);
  if (mode == 12) return std::min(b, p);
  if (mode >= 15 && mode <= 18) return mixed;
  return r;
}

// The modes that leave the colours alone or take the whole pixel. False for all others.
bool blendWhole(const Layout& layout, Pixel& base, const Pixel& ray, int mode) {
  const double luma = blendLuma(layout, ray);
  if (mode == 13 || mode == 14) {
    if (rayWins(layout, base, ray, mode)) base = ray;
  } else if (mode >= 19 && mode <= 22) {
    if (!layout.alpha) return true;
    if (mode == 19) base.a = clampTo(base.a + luma, layout.range);
    if (mode == 20) base.a = std::max(base.a - luma, 0.0);
    if (mode == 21) base.a = clampTo(base.a * luma * layout.unit, layout.range);
    if (mode == 22) base.a = clampTo(luma, layout.range);
  } else if (mode < 1 || mode > 22) {
    base = ray;
  } else {
    return false;
  }
  return true;
}

void blendPixel(const Layout& layout, Pixel& base, const Pixel& ray, int mode) {
  if (blendWhole(layout, base, ray, mode)) return;
  const double alpha = layout.alpha ? base.a * layout.unit : 1.0;
  const double rho = layout.alpha ? ray.a * layout.unit : 1.0;
  const bool hslMode = mode >= 15 && mode <= 18;
  const double heaviest = 1.0 - (largest(ray) * layout.unit) * rho;
  Pixel under, over, mixed;  // the two pixels premultiplied
  for (int k = 0; k < layout.colors; ++k) {
    under.c[k] = alpha * base.c[k];
    over.c[k] = rho * ray.c[k];
  }
  if (hslMode) mixed = mixHsl(layout, under, over, mode);
  for (int k = 0; k < layout.colors; ++k) {
    const double b = under.c[k];
    const double p = over.c[k];
    double c = blendChannel(layout, b, p, ray.c[k], heaviest, mixed.c[k], mode);
    if (layout.alpha) {
      if (mode == 1) c = (1.0 - rho) * alpha * base.c[k] + rho * ray.c[k];
      if (mode == 7) c = (b - c) * (1.0 - rho) + c + (1.0 - alpha) * p;
      if (mode == 8 || mode == 12) c = (c - b) * rho + b;
      if (mode == 4 || hslMode) c = (c - b) * rho + b + (1.0 - alpha) * p;
    }
    base.c[k] = c;
  }
  if (!layout.alpha) return;
  if (mode == 1 || mode == 4) {
    base.a = mode == 1 ? (1.0 - rho) * base.a + ray.a : clampTo(base.a, layout.range);
    if (base.a > 0.0) divideAlphaOut(layout, base, base.a);
    return;
  }
  if (mode == 7 || hslMode) base.a = ray.a * (1.0 - alpha) + base.a;
  finishAlpha(layout, base);
}

// ---- Shading -----------------------------------------------------------------------------------

std::vector<float> makeGammaTable(const Layout& layout, double exponent) {
  const float step = std::bit_cast<float>(std::uint32_t{0x38000100});  // close to 1/32767
  std::vector<float> table(kGammaEntries);
  for (int i = 0; i < kGammaEntries; ++i) {
    table[static_cast<std::size_t>(i)] =
        powerSingle(static_cast<float>(i) * step, static_cast<float>(exponent)) *
        static_cast<float>(layout.range);
  }
  return table;
}

void adjustHsl(const Layout& layout, Pixel& p, const Values& values) {
  const double r = p.c[0] / layout.range;
  const double g = p.c[1] / layout.range;
  const double b = p.c[2] / layout.range;
  Hsl hsl = rgbToHsl(r, g, b);
  double s = values.saturation;
  if (s > 0.0) {  // weak colours are to stay weak
    const double chroma = std::max(std::max(std::abs(r - g), std::abs(r - b)), std::abs(g - b));
    const double p1 = power(s, 1e8);
    const double p2 = power(1e-8, chroma);
    s = (1.0 - p2) * s * (1.0 - p1) + p1 * s;
  }
  if (hsl.h != 0.0) hsl.s = s > 0.0 ? hsl.s + (1.0 - hsl.s) * s : hsl.s * (s + 1.0);
  hsl.h += values.hue * 3.0;
  if (hsl.h > 6.0) {
    hsl.h -= 6.0;
  } else if (hsl.h < 0.0) {
    hsl.h += 6.0;
  }
  double rgb[3];
  hslToRgb(hsl, rgb);
  const double l = values.lightness;
  for (int k = 0; k < layout.colors; ++k) {
    const double lit = l >= 0.0 ? rgb[k] + (1.0 - rgb[k]) * l : rgb[k] * (l + 1.0);
    p.c[k] = lit * layout.range;
  }
}

double tinted(double c, double t, double low, double high) {
  if (t < 0.5) return c * low;
  if (t > 1.0) return c * high;
  return c * ((high - low) * ((t - 0.5) * 2.0) + low);
}

double contrasted(const Layout& layout, double c, const Values& values, double exponent,
                  const std::vector<float>& gammaTable) {
  if (layout.isFloat()) return power(values.contrast * (c + 0.5) + c, exponent);
  const double mid = layout.depth == 8 ? 127.5 : 16384.0;
  const double perEntry = layout.depth == 8 ? 128.49803921568628 : 0.999969482421875;
  const double v = clampTo(values.contrast * (c + mid) + c, layout.range);
  const int entry = std::clamp(truncated(v * perEntry), 0, kGammaEntries - 1);
  return static_cast<double>(gammaTable[static_cast<std::size_t>(entry)]);
}

// Turns a sample of the smeared selection into the finished ray colour.
Pixel shade(const Layout& layout, Pixel p, double falloff, const Values& values, double exponent,
            const std::vector<float>& gammaTable) {
  const double strength = values.intensity * falloff;
  for (double& c : p.c) c *= strength;
  p.a *= strength;

  double t = weighted(layout, p);
  t = layout.alpha ? t * p.a * layout.unit * layout.unit : t * layout.unit;
  const double balance = values.colorBalance;
  t = balance >= 0.0 ? (1.0 - balance) * t + balance : (balance + 1.0) * t;
  for (int k = 0; k < layout.colors; ++k) {
    p.c[k] = tinted(p.c[k], t, values.colorLow[k], values.colorHigh[k]);
  }
  p.a = clampTo(p.a, layout.range);
  for (int k = 0; k < layout.colors; ++k) {
    p.c[k] = contrasted(layout, p.c[k], values, exponent, gammaTable);
  }
  if (layout.alpha) {
    const double most = largest(p);
    if (p.a < most) p.a = std::min(most, layout.range);
    if (p.a > 0.0) divideAlphaOut(layout, p, p.a);
    p.a = clampTo(p.a, layout.range);
  }
  if (!layout.isFloat()) {
    for (int k = 0; k < layout.colors; ++k) p.c[k] = clampTo(p.c[k], layout.range);
  }
  adjustHsl(layout, p, values);
  return p;
}

// ---- The passes --------------------------------------------------------------------------------

// The selected picture under the mask, its own channels only. Each step is rounded to what the
// target stores: floats for the rays, the picture's own samples when it is the output.
std::vector<double> selectPicture(const Picture& input, const Layout& layout,
                                  const std::uint8_t* mask, const Selection& selection,
                                  bool forRays) {
  const auto store = [&](double value) {
    return forRays ? static_cast<double>(static_cast<float>(value)) : stored(layout, value);
  };
  std::vector<double> result;
  const auto planes = static_cast<std::size_t>(input.planes);
  for (std::size_t i = 0; i < input.samples.size() / planes; ++i) {
    const Pixel p = selectedPixel(selection, layout, readPixel(input, layout, i * planes));
    for (int k = 0; k < layout.channels(); ++k) {
      const double value = store(k < layout.colors ? p.c[k] : p.a);
      result.push_back(mask ? store(value * maskFactor(mask[i])) : value);
    }
  }
  return result;
}

}  // namespace

Picture render(const Picture& input, const std::uint8_t* mask, const Values& values,
               double viewScaleX, double viewScaleY) {
  Picture output = input;
  const Layout layout = layoutOf(input);
  const auto planes = static_cast<std::size_t>(input.planes);
  const auto channels = static_cast<std::size_t>(layout.channels());
  const bool showRays = values.selectionShow == 1;
  const std::vector<double> selected =
      selectPicture(input, layout, mask, makeSelection(values, layout), showRays);
  if (!showRays) {
    for (std::size_t i = 0; i < selected.size(); ++i) {
      output.samples[i / channels * planes + i % channels] = selected[i];
    }
    return output;
  }

  const int w = input.width;
  const int h = input.height;
  const int originX = truncated(w * values.originX);
  const int originY = truncated(h * values.originY);
  FloatImage rays{w, h, layout.channels(), {}};
  for (const double value : selected) rays.samples.push_back(static_cast<float>(value));
  double shiftX = 0.0;
  double shiftY = 0.0;
  if (values.rayLength != 0.0) {
    // Half a pixel one way before the smear, and the same way back when the rays are read.
    shiftX = originX < 0 ? -0.5 : 0.5;
    shiftY = originY < 0 ? -0.5 : 0.5;
    moveSubPixel(rays, -shiftX, -shiftY);
    if (values.mode == 1) {
      straightSmear(rays, originX, originY, values.rayLength);
    } else {
      smoothSmear(rays, originX, originY, values.rayLength);
    }
  }

  const double exponent = 1.0 / (values.gamma > 0.001 ? values.gamma : 0.001);
  const std::vector<float> gammaTable = makeGammaTable(layout, exponent);
  const double reach =
      values.radius * std::sqrt(viewScaleY * viewScaleY * static_cast<double>(wrapMul(h, h)) +
                                viewScaleX * viewScaleX * static_cast<double>(wrapMul(w, w)));
  const double inv = 1.0 / (reach <= 0.0 ? 1e-06 : reach);
  std::size_t at = 0;
  for (int y = 0; y < h; ++y) {
    for (int x = 0; x < w; ++x, at += planes) {
      double sample[4];
      sampleBilinear(rays, x + shiftX, y + shiftY, sample);
      Pixel ray;
      for (int k = 0; k < layout.colors; ++k) ray.c[k] = sample[k];
      if (layout.alpha) ray.a = sample[layout.colors];

      const double dx = (static_cast<double>(originX) - x) * inv * viewScaleX;
      const double dy = (static_cast<double>(originY) - y) * inv * viewScaleY;
      double falloff = 1.0 - std::sqrt(dx * dx + dy * dy);
      if (falloff <= 0.0) falloff = 0.0001;
      ray = shade(layout, ray, falloff, values, exponent, gammaTable);

      Pixel base = readPixel(input, layout, at);
      blendPixel(layout, base, ray, values.blendMode);
      for (int k = 0; k < layout.colors; ++k) {
        output.samples[at + static_cast<std::size_t>(k)] = storedColor(layout, base.c[k]);
      }
      if (layout.alpha) {
        output.samples[at + static_cast<std::size_t>(layout.colors)] = stored(layout, base.a);
      }
    }
  }
  return output;
}

}  // namespace judge
