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

// Frames of video: three bytes of each four. Whole words go several times as fast as samples.
bool isFrameOfWords(const radiashafts_picture& picture) {
  const auto* const first = static_cast<const std::uint8_t*>(picture.planes[0]);
  return picture.depth == 8 && picture.colors == 3 && picture.has_alpha == 0 &&
         picture.pixel_stride == 4 && picture.planes[1] == first + 1 &&
         picture.planes[2] == first + 2;
}

constexpr std::uint32_t colorBits = 0xFFFFFF;

std::uint32_t word(const std::uint8_t* words, std::ptrdiff_t number) {
  return load<std::uint32_t>(words + 4 * number);
}

// Calls useFour(outside, inside) for each four pixels of a row and useOne for the others. The last
// pixel is among these: the byte behind its colours need not be the caller's.
template <class Bytes, class UseFour, class UseOne>
void forEachFour(const radiashafts_picture& outside, Bytes* inside, const UseFour& useFour,
                 const UseOne& useOne) {
  for (std::ptrdiff_t y = 0; y < outside.height; ++y) {
    auto* pixel = static_cast<std::uint8_t*>(outside.planes[0]) + y * outside.row_stride;
    int left = outside.width;
    for (; left > 4; left -= 4, pixel += 16, inside += 12) useFour(pixel, inside);
    for (; left > 0; --left, pixel += 4, inside += 3) useOne(pixel, inside);
  }
}

void copyWordsIn(const radiashafts_picture& from, standin::Picture& to) {
  forEachFour(
      from, to.bytes.data(),
      [](const std::uint8_t* outside, std::uint8_t* inside) {
        const std::uint32_t first = word(outside, 0), second = word(outside, 1);
        const std::uint32_t third = word(outside, 2), fourth = word(outside, 3);
        store(inside, (first & colorBits) | second << 24);
        store(inside + 4, (second >> 8 & 0xFFFF) | third << 16);
        store(inside + 8, (third >> 16 & 0xFF) | fourth << 8);
      },
      [](const std::uint8_t* outside, std::uint8_t* inside) { std::copy_n(outside, 3, inside); });
}

void copyWordsOut(const standin::Picture& from, const radiashafts_picture& to) {
  const auto setColors = [](std::uint8_t* outside, std::uint32_t colors) {
    store(outside, (load<std::uint32_t>(outside) & ~colorBits) | (colors & colorBits));
  };
  forEachFour(
      to, from.bytes.data(),
      [&](std::uint8_t* outside, const std::uint8_t* inside) {
        const std::uint32_t first = word(inside, 0), second = word(inside, 1);
        const std::uint32_t third = word(inside, 2);
        setColors(outside, first);
        setColors(outside + 4, first >> 24 | second << 8);
        setColors(outside + 8, second >> 16 | third << 16);
        setColors(outside + 12, third >> 8);
      },
      [](std::uint8_t* outside, const std::uint8_t* inside) { std::copy_n(inside, 3, outside); });
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
  if (isFrameOfWords(from)) return copyWordsIn(from, to);
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
  if (isFrameOfWords(to)) return copyWordsOut(from, to);
  if (from.depth == 8) return copySamplesOut<std::uint8_t>(from, to);
  if (from.depth == 16) return copySamplesOut<std::uint16_t>(from, to);
  copySamplesOut<std::uint32_t>(from, to);
}

}  // namespace radiashafts::hosts
