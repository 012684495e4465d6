#include "hosts/library/auto_values.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

#include "hosts/library/light_finder.h"
#include "parameters/effect_table.h"

namespace radiashafts::hosts {
namespace {

using standin::Mask;
using standin::Picture;
using standin::Script;

constexpr int trialSide = 600;           // pixels of the picture in small
constexpr double addedClipping = 0.01;   // of the pixels
constexpr double trialClipping = 0.008;  // of those of the picture in small, which is not the same
constexpr int intensitySteps = 20;       // to 1.0

// A parameter and the key of its first value, or of another.
const ParameterFacts& factsOf(std::string_view name) {
  return *std::find_if(effectTable.begin(), effectTable.end(),
                       [name](const ParameterFacts& facts) { return name == facts.name; });
}
std::uint32_t keyOf(std::string_view name, std::size_t k = 0) {
  return scriptKey(factsOf(name).keys[k]);
}

const standin::ScriptValue* find(const Script& script, std::uint32_t key) {
  const auto entry = std::find_if(script.begin(), script.end(),
                                  [key](const auto& value) { return value.first == key; });
  return entry == script.end() ? nullptr : &entry->second;
}

// A parameter's first value, which is its default where the script does not hold it.
double numberIn(const Script& script, std::string_view name) {
  const auto* const value = find(script, keyOf(name));
  return value == nullptr ? factsOf(name).defaults[0] : std::get<double>(*value);
}

void set(Script& script, std::uint32_t key, double value) {
  std::erase_if(script, [key](const auto& entry) { return entry.first == key; });
  script.emplace_back(key, value);
}

// Every nth pixel of every nth row, so that as many pixels clip as in the large picture, and where
// it is bright the light has the same values.
struct Sampling {
  int step;
  int width, height;

  explicit Sampling(const Picture& picture)
      : step(std::max((std::max(picture.width, picture.height) + trialSide - 1) / trialSide, 1)),
        width((picture.width + step - 1) / step),
        height((picture.height + step - 1) / step) {}

  std::vector<std::uint8_t> of(const std::vector<std::uint8_t>& bytes, std::size_t rowBytes,
                               std::size_t pixelBytes) const {
    const auto stride = static_cast<std::size_t>(step);
    std::vector<std::uint8_t> sampled;
    sampled.reserve(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) *
                    pixelBytes);
    for (std::size_t y = 0; y < bytes.size() / rowBytes; y += stride) {
      const auto row = bytes.begin() + static_cast<std::ptrdiff_t>(y * rowBytes);
      for (std::size_t x = 0; x < rowBytes; x += stride * pixelBytes) {
        const auto pixel = row + static_cast<std::ptrdiff_t>(x);
        sampled.insert(sampled.end(), pixel, pixel + static_cast<std::ptrdiff_t>(pixelBytes));
      }
    }
    return sampled;
  }
};

template <class Sample>
double clippedShare(const Picture& picture, Sample fullScale) {
  const auto* sample = reinterpret_cast<const Sample*>(picture.bytes.data());
  const std::size_t pixels = picture.sampleCount() / static_cast<std::size_t>(picture.planes);
  std::size_t clipped = 0;
  for (std::size_t i = 0; i < pixels; ++i, sample += picture.planes) {
    clipped += std::any_of(sample, sample + picture.colorPlanes,
                           [fullScale](Sample color) { return color >= fullScale; });
  }
  return static_cast<double>(clipped) / static_cast<double>(pixels);
}

// The share of pixels with a colour at full scale.
double clippedShare(const Picture& picture) {
  switch (picture.depth) {
    case 8:
      return clippedShare<std::uint8_t>(picture, 255);
    case 16:
      return clippedShare<std::uint16_t>(picture, 32768);
    default:
      return clippedShare<float>(picture, 1);
  }
}

// Renders of the picture in small.
class Trials {
 public:
  Trials(const Picture& picture, const Mask* mask, standin::EntryPoint entry,
         const std::function<bool()>& abortWanted)
      : picture_(picture), entry_(entry), abortWanted_(abortWanted) {
    const Sampling sampling(picture);
    picture_ = {sampling.width,
                sampling.height,
                picture.planes,
                picture.colorPlanes,
                picture.hasAlpha,
                picture.depth,
                sampling.of(picture.bytes, picture.rowBytes(), picture.pixelBytes())};
    if (mask != nullptr) {
      mask_ = {sampling.width, sampling.height,
               sampling.of(mask->bytes, static_cast<std::size_t>(mask->width), 1)};
    }
    allowed_ = clippedShare(picture_) + trialClipping;
  }

  // Whether so few pixels clip; not when the filter fails, which the render in full tells.
  bool passes(const Script& script) const {
    standin::StandInHost host(picture_, mask_ ? &*mask_ : nullptr);
    host.abortWanted = abortWanted_;
    Picture output;
    return host.run(entry_, script, output).status == 0 && clippedShare(output) <= allowed_;
  }

 private:
  Picture picture_;
  std::optional<Mask> mask_;
  standin::EntryPoint entry_;
  const std::function<bool()>& abortWanted_;
  double allowed_ = 0;
};

// The script's intensity, or the highest below it that passes; 0 where none does.
double passingIntensity(const Trials& trials, Script script) {
  const double limit = numberIn(script, "Intensity");
  if (trials.passes(script)) return limit;
  int passing = 0;
  int failing = static_cast<int>(std::ceil(std::min(limit, 1e6) * intensitySteps));
  while (passing + 1 < failing) {
    const int middle = passing + (failing - passing) / 2;
    set(script, keyOf("Intensity"), static_cast<double>(middle) / intensitySteps);
    (trials.passes(script) ? passing : failing) = middle;
  }
  return static_cast<double>(passing) / intensitySteps;
}

double thousandths(double value) {
  return std::round(value * 1000) / 1000;
}

}  // namespace

AutoValues::AutoValues(const Picture& picture, const Mask* mask, Script script, const Script& given,
                       standin::EntryPoint entry, const std::function<bool()>& abortWanted)
    : script_(std::move(script)), allowedClipping_(clippedShare(picture) + addedClipping) {
  const auto isFree = [&given](std::string_view name) {
    return find(given, keyOf(name)) == nullptr;
  };
  if (const std::optional<Light> light = findLight(picture, mask)) {
    lightFound_ = true;
    if (isFree("Origin")) {
      choose(keyOf("Origin", 0), thousandths(light->x));
      choose(keyOf("Origin", 1), thousandths(light->y));
    }
    // A preset may let only the dark parts of the picture shine.
    const bool brightShines = light->low < numberIn(script_, "SelectionHigh");
    if (isFree("SelectionLow") && brightShines) choose(keyOf("SelectionLow"), light->low);
  }
  if (isFree("Intensity")) {
    const Trials trials(picture, mask, entry, abortWanted);
    choose(keyOf("Intensity"), passingIntensity(trials, script_));
  }
}

void AutoValues::choose(std::uint32_t key, double value) {
  set(script_, key, value);
  set(chosen_, key, value);
}

bool AutoValues::lowerIntensity(const Picture& rendered) {
  const double intensity = numberIn(script_, "Intensity");
  const bool isChosen = find(chosen_, keyOf("Intensity")) != nullptr;
  if (!isChosen || intensity == 0 || clippedShare(rendered) <= allowedClipping_) return false;
  choose(keyOf("Intensity"), std::floor(0.8 * intensity * intensitySteps) / intensitySteps);
  return true;
}

}  // namespace radiashafts::hosts
