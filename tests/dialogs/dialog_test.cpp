#include "tests/dialogs/dialog_test.h"

#include <cmath>
#include <cstring>

#include "standin/picture_file.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

// A channel of 0 to 255 at the picture's depth.
void store(standin::Picture& picture, int x, int y, int plane, int value) {
  const std::size_t pixel = static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                            static_cast<std::size_t>(x);
  const std::size_t index =
      pixel * static_cast<std::size_t>(picture.planes) + static_cast<std::size_t>(plane);
  std::uint8_t* to = &picture.bytes[index * picture.sampleBytes()];
  if (picture.depth == 8) {
    *to = static_cast<std::uint8_t>(value);
  } else if (picture.depth == 16) {
    const auto word = static_cast<std::uint16_t>((value * 32768 + 127) / 255);
    std::memcpy(to, &word, sizeof word);
  } else {
    const float sample = static_cast<float>(value) / 255.0F;
    std::memcpy(to, &sample, sizeof sample);
  }
}

standin::Picture emptyPicture(int width, int height, int depth, bool hasAlpha) {
  standin::Picture picture;
  picture.width = width;
  picture.height = height;
  picture.depth = depth;
  picture.colorPlanes = 3;
  picture.hasAlpha = hasAlpha;
  picture.planes = hasAlpha ? 4 : 3;
  picture.allocate();
  return picture;
}

}  // namespace

standin::Picture placesPicture(int width, int height, int depth, bool hasAlpha) {
  standin::Picture picture = emptyPicture(width, height, depth, hasAlpha);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      store(picture, x, y, 0, x & 255);
      store(picture, x, y, 1, y & 255);
      store(picture, x, y, 2, (x / 8 + y / 8) % 2 * 200);
      if (hasAlpha) store(picture, x, y, 3, (x * 3 + y * 5) & 255);
    }
  }
  return picture;
}

standin::Picture forestPicture(int width, int height) {
  standin::Picture picture = emptyPicture(width, height, 8, false);
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const double u = static_cast<double>(x) / width;
      const double v = static_cast<double>(y) / height;
      const double sky = std::exp(-6.0 * std::hypot(u - 0.4, v - 0.3));
      const double trunk = std::sin(u * 47.0 + std::sin(v * 3.0)) * std::sin(u * 19.0) > 0.25;
      const double light = (60.0 + 195.0 * sky) * (trunk > 0.0 ? 0.15 : 1.0) * (1.0 - 0.5 * v * v);
      store(picture, x, y, 0, static_cast<int>(light));
      store(picture, x, y, 1, static_cast<int>(light * 0.95));
      store(picture, x, y, 2, static_cast<int>(light * 0.8));
    }
  }
  return picture;
}

std::string writePicture(const char* name, const standin::Picture& picture) {
  const std::filesystem::path path = workFolder() / name;
  standin::writePictureFile(path, {picture, nullptr}, [] { return false; });
  return path.string();
}

standin::Picture readPicture(const std::string& path) {
  return standin::readPictureFile(path).picture;
}

standin::Script withoutRays() {
  judge::Values values;
  values.intensity = 0.0;
  return scriptOf(values);
}

}  // namespace radiashafts::test
