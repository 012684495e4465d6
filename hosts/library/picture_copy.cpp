#include "hosts/library/picture_copy.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "standin/word_scale.h"

namespace radiashafts::hosts {
namespace {

// Calls use(outside, inside) for each sample: outside is in the caller's picture, inside in ours.
template <class Sample, int planes, class Bytes, class Use>
void forEachSampleOf(const radiashafts_picture& outside, Bytes* inside, const Use& use) {
  for (std::ptrdiff_t y = 0; y < outside.height; ++y) {
    std::array<std::uint8_t*, planes> samples;
    for (std::size_t plane = 0; plane < planes; ++plane) {
      samples[plane] = static_cast<std::uint8_t*>(outside.planes[plane]) + y * outside.row_stride;
    }
    for (std::ptrdiff_t x = 0; x < outside.width; ++x) {
      for (std::uint8_t* sample : samples) {
        use(sample + x * outside.pixel_stride, inside);
        inside += sizeof(Sample);
      }
    }
  }
}

// The number of planes is known when this is compiled: a pixel takes half the time then.
template <class Sample, class Bytes, class Use>
void forEachSample(const radiashafts_picture& outside, Bytes* inside, int planes, const Use& use) {
  if (planes == 1) return forEachSampleOf<Sample, 1>(outside, inside, use);
  if (planes == 2) return forEachSampleOf<Sample, 2>(outside, inside, use);
  if (planes == 3) return forEachSampleOf<Sample, 3>(outside, inside, use);
  forEachSampleOf<Sample, 4>(outside, inside, use);
}

template <class Sample>
Sample load(const std::uint8_t* bytes) {  // from any address
  Sample sample;
  std::memcpy(&sample, bytes, sizeof sample);
  return sample;
}

template <class Sample>
void store(std::uint8_t* bytes, Sample sample) {
  std::memcpy(bytes, &sample, sizeof sample);
}

// The caller's sample for ours and the reverse.
template <class Sample>
Sample hostSample(Sample sample) {
  if constexpr (sizeof(Sample) == 2) return standin::hostWord(sample);
  return sample;
}
template <class Sample>
Sample fileSample(Sample sample) {
  if constexpr (sizeof(Sample) == 2) return standin::fileWord(sample);
  return sample;
}

template <class Sample>
void copySamplesIn(const radiashafts_picture& from, standin::Picture& to) {
  forEachSample<Sample>(from, to.bytes.data(), to.planes,
                        [](const std::uint8_t* outside, std::uint8_t* inside) {
                          store(inside, hostSample(load<Sample>(outside)));
                        });
}

template <class Sample>
void copySamplesOut(const standin::Picture& from, const radiashafts_picture& to) {
  forEachSample<Sample>(to, from.bytes.data(), from.planes,
                        [](std::uint8_t* outside, const std::uint8_t* inside) {
                          store(outside, fileSample(load<Sample>(inside)));
                        });
}

}  // namespace

void copyIn(const radiashafts_picture& from, standin::Picture& to) {
  to.width = from.width;
  to.height = from.height;
  to.planes = from.colors + from.has_alpha;
  to.colorPlanes = from.colors;
  to.hasAlpha = from.has_alpha != 0;
  to.depth = from.depth;
  to.allocate();
  if (to.depth == 8) return copySamplesIn<std::uint8_t>(from, to);
  if (to.depth == 16) return copySamplesIn<std::uint16_t>(from, to);
  copySamplesIn<std::uint32_t>(from, to);  // floats, bit for bit
}

void copyIn(const radiashafts_mask& from, int width, int height, standin::Mask& to) {
  to.width = width;
  to.height = height;
  to.bytes.resize(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (int y = 0; y < height; ++y) {
    std::copy_n(from.samples + y * from.row_stride, width,
                to.bytes.data() + static_cast<std::size_t>(y) * static_cast<std::size_t>(width));
  }
}

void copyOut(const standin::Picture& from, const radiashafts_picture& to) {
  if (from.depth == 8) return copySamplesOut<std::uint8_t>(from, to);
  if (from.depth == 16) return copySamplesOut<std::uint16_t>(from, to);
  copySamplesOut<std::uint32_t>(from, to);
}

}  // namespace radiashafts::hosts
