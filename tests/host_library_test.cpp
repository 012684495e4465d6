// Other programs' pictures and values, through the C interface.
#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "hosts/library/effect_script.h"
#include "hosts/library/radiashafts-host.h"
#include "standin/word_scale.h"
#include "tests/support/module_under_test.h"
#include "tests/support/test_folder.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

class HostLibrary : public testing::Test {
 protected:
  ~HostLibrary() override { radiashafts_close(session_); }
  std::string error() const { return radiashafts_error(session_); }
  std::vector<double> get(const char* name) const {
    std::vector<double> values(3);
    EXPECT_EQ(radiashafts_get(session_, name, values.data()), RADIASHAFTS_OK) << name;
    return values;
  }
  radiashafts_result set(const char* name, std::vector<double> values) const {
    return radiashafts_set(session_, name, values.data());
  }

  radiashafts_session* const session_ = radiashafts_open();
};

// The picture's samples outside the host: bottom-up, the planes behind each other, a gap of seven
// bytes after every second sample, 16 bits in full.
struct OddLayout {
  explicit OddLayout(const standin::Picture& from)
      : pixelStride(2 * from.sampleBytes() + 7),
        rowStride(pixelStride * static_cast<std::size_t>(from.width) + 5),
        bytes(rowStride * static_cast<std::size_t>(from.height * from.planes), gap) {
    standin::Picture words = from;
    standin::rescaleWords(words, standin::fileWord);
    for (std::size_t i = 0; i < from.sampleCount(); ++i) {
      std::memcpy(sample(from, i), words.bytes.data() + i * from.sampleBytes(), from.sampleBytes());
    }
    view = {from.width,
            from.height,
            from.depth,
            from.colorPlanes,
            from.hasAlpha ? 1 : 0,
            {},
            static_cast<std::ptrdiff_t>(pixelStride),
            -static_cast<std::ptrdiff_t>(rowStride)};
    for (int plane = 0; plane < from.planes; ++plane) {
      view.planes[plane] = sample(from, static_cast<std::size_t>(plane));
    }
  }

  // The place of the picture's sample with this number.
  std::uint8_t* sample(const standin::Picture& of, std::size_t i) {
    const auto planes = static_cast<std::size_t>(of.planes);
    const auto width = static_cast<std::size_t>(of.width);
    const auto height = static_cast<std::size_t>(of.height);
    const std::size_t x = i / planes % width;
    const std::size_t y = i / planes / width;
    const std::size_t row = i % planes * height + (height - 1 - y);
    return bytes.data() + row * rowStride + x * pixelStride;
  }

  static constexpr std::uint8_t gap = 0xE7;
  std::size_t pixelStride, rowStride;
  std::vector<std::uint8_t> bytes;
  radiashafts_picture view{};
};

TEST_F(HostLibrary, PicturesOfAnyLayoutAreWhatTheFilterMakes) {
  Random random(11);
  set("Origin", {0.3, 1.2});
  set("SelectionSoften", {1.5});
  set("Mode", {2});
  EffectParameters effect;
  effect.Origin.SetValue(0.3, 1.2);
  effect.SelectionSoften.SetValue(1.5);
  effect.Mode.SetValue(2);
  for (const int configuration : {1, 3, 4, 6, 7, 9, 10, 12, 13, 15, 16, 18}) {
    const standin::Picture input = randomPicture(random, configuration, 41, 29);
    const standin::Mask mask = randomMask(random, input.width, input.height);
    const ModuleRun expected = runModule(input, &mask, hosts::scriptOf(effect));
    const radiashafts_mask view{mask.bytes.data(), mask.width};
    OddLayout picture(input);
    OddLayout result(input);
    ASSERT_EQ(radiashafts_render(session_, &picture.view, &view, &result.view, nullptr, nullptr),
              RADIASHAFTS_OK)
        << error();
    EXPECT_EQ(result.bytes, OddLayout(expected.output).bytes) << configuration;
    EXPECT_EQ(picture.bytes, OddLayout(input).bytes) << configuration;
    // In place, as well.
    radiashafts_render(session_, &picture.view, &view, &picture.view, nullptr, nullptr);
    EXPECT_EQ(picture.bytes, result.bytes) << configuration;
  }
}

// Frames of four bytes a pixel, of which the first is not the filter's and the last ends the
// memory.
TEST_F(HostLibrary, FramesKeepTheirFourthByte) {
  Random random(13);
  constexpr int colors = 3;
  for (const int width : {1, 4, 43}) {
    const standin::Picture input = randomPicture(random, 18, width, 5);
    const standin::Picture output = runModule(input, nullptr, hosts::scriptOf({})).output;
    const auto frameOf = [](const standin::Picture& picture) {
      std::vector<std::uint8_t> frame;
      frame.reserve(picture.bytes.size() / colors * 4);
      for (std::size_t i = 0; i < picture.bytes.size(); ++i) {
        if (i % colors == 0) frame.push_back(static_cast<std::uint8_t>(i));
        frame.push_back(picture.bytes[i]);
      }
      return frame;
    };
    std::vector<std::uint8_t> frame = frameOf(input);
    std::uint8_t* const red = frame.data() + 1;
    const radiashafts_picture view{width, 5, 8, colors, 0, {red, red + 1, red + 2}, 4, 4 * width};
    radiashafts_render(session_, &view, nullptr, &view, nullptr, nullptr);
    EXPECT_EQ(frame, frameOf(output)) << width;
  }
}

TEST_F(HostLibrary, ThreadsTakeTurnsAndACancelledRenderLeavesTheResult) {
  Random random(12);
  const standin::Picture input = randomPicture(random, 15, 300, 200);
  const OddLayout expected(runModule(input, nullptr, hosts::scriptOf(EffectParameters())).output);
  const auto renderOften = [&] {
    radiashafts_session* const session = radiashafts_open();
    OddLayout picture(input);
    OddLayout result(input);
    for (int i = 0; i < 6; ++i) {
      radiashafts_render(session, &picture.view, nullptr, &result.view, nullptr, nullptr);
      EXPECT_EQ(result.bytes, expected.bytes);
    }
    radiashafts_close(session);
  };
  std::vector<std::thread> threads;
  for (int i = 0; i < 3; ++i) threads.emplace_back(renderOften);
  for (std::thread& thread : threads) thread.join();

  OddLayout picture(input);
  const std::vector<std::uint8_t> before = picture.bytes;
  const auto cancel = [](void*, double) { return 0; };
  EXPECT_EQ(radiashafts_render(session_, &picture.view, nullptr, &picture.view, cancel, nullptr),
            RADIASHAFTS_CANCELLED);
  EXPECT_EQ(picture.bytes, before);

  // A second session while the first one renders on the same thread would wait forever.
  struct Nested {
    radiashafts_session* session;
    const radiashafts_picture* picture;
    radiashafts_result result;
  } nested{radiashafts_open(), &picture.view, RADIASHAFTS_OK};
  const auto render = [](void* context, double) {
    auto& inner = *static_cast<Nested*>(context);
    inner.result =
        radiashafts_render(inner.session, inner.picture, nullptr, inner.picture, nullptr, nullptr);
    return 1;
  };
  radiashafts_render(session_, &picture.view, nullptr, &picture.view, render, &nested);
  EXPECT_EQ(nested.result, RADIASHAFTS_INVALID_ARGUMENT);
  radiashafts_close(nested.session);
}

TEST_F(HostLibrary, ALightIsFoundOrTheValuesStay) {
  constexpr int width = 300, height = 200;
  std::vector<std::uint8_t> samples(width * height, 60);
  const radiashafts_picture picture{width, height, 8, 1, 0, {samples.data()}, 1, width};
  const auto find = [&] {
    return radiashafts_find_light(session_, &picture, nullptr, nullptr, nullptr);
  };
  EXPECT_EQ(find(), RADIASHAFTS_NOT_FOUND);
  EXPECT_EQ(get("Origin")[0], 0.5);
  std::uint8_t* sample = samples.data();
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const double distance = std::hypot(x - 210, y - 60);
      *sample++ = static_cast<std::uint8_t>(60 + 190 * std::exp(-distance * distance / 800));
    }
  }
  ASSERT_EQ(find(), RADIASHAFTS_OK) << error();
  EXPECT_NEAR(get("Origin")[0], 0.7, 0.02);
  EXPECT_NEAR(get("Origin")[1], 0.3, 0.02);
  EXPECT_GT(get("SelectionLow")[0], 60);
}

TEST_F(HostLibrary, ValuesAndPresetsAreTakenByNameAndRefusedInOneLine) {
  const TestFolder folder;
  const std::string file = folder.path("own.cfg");
  for (int i = 0; i < radiashafts_parameter_count(); ++i) {
    const radiashafts_parameter& parameter = *radiashafts_parameter_at(i);
    for (int k = 0; k < parameter.value_count; ++k) {
      EXPECT_EQ(get(parameter.name)[static_cast<std::size_t>(k)], parameter.defaults[k])
          << parameter.name;
    }
    // A value above the slider is taken where the end is open, else the limit is.
    const double beyond = parameter.maximum + 1;
    if (parameter.kind != RADIASHAFTS_NUMBER && parameter.kind != RADIASHAFTS_LIST) continue;
    set(parameter.name, {beyond});
    EXPECT_EQ(get(parameter.name)[0], parameter.has_open_end ? beyond : parameter.maximum)
        << parameter.name;
  }
  EXPECT_EQ(radiashafts_parameter_at(radiashafts_parameter_count()), nullptr);

  EXPECT_EQ(set("BlendMode", {1e300}), RADIASHAFTS_OK);
  EXPECT_EQ(set("Intensity", {std::nan("")}), RADIASHAFTS_INVALID_ARGUMENT);
  EXPECT_EQ(error(), "Intensity: a value is not finite");
  EXPECT_EQ(set("Intensty", {1}), RADIASHAFTS_INVALID_ARGUMENT);
  EXPECT_EQ(error(), "there is no parameter 'Intensty'; did you mean Intensity?");

  set("Intensity", {3.25});
  EXPECT_EQ(radiashafts_save_preset(session_, file.c_str(), "mine"), RADIASHAFTS_OK);
  radiashafts_reset(session_);
  EXPECT_EQ(get("Intensity")[0], 2.0);
  EXPECT_EQ(radiashafts_load_preset(session_, file.c_str(), "mine"), RADIASHAFTS_OK);
  EXPECT_EQ(get("Intensity")[0], 3.25);
  EXPECT_EQ(radiashafts_load_preset(session_, file.c_str(), "min"), RADIASHAFTS_NOT_FOUND);
  EXPECT_EQ(error(), file + ": has no preset 'min'; did you mean mine?");

  std::vector<std::string> shipped;
  const auto keep = [](void* names, const char* name, const char* description) {
    EXPECT_STRNE(description, "") << name;
    static_cast<std::vector<std::string>*>(names)->emplace_back(name);
  };
  EXPECT_EQ(radiashafts_list_presets(session_, nullptr, keep, &shipped), RADIASHAFTS_OK);
  ASSERT_FALSE(shipped.empty());
  EXPECT_EQ(radiashafts_load_preset(session_, nullptr, shipped[0].c_str()), RADIASHAFTS_OK);

  std::uint8_t sample = 0;
  const radiashafts_picture good{1, 1, 8, 1, 0, {&sample}, 1, 1};
  radiashafts_picture bad = good;
  bad.width = 32768;
  EXPECT_EQ(radiashafts_render(session_, &bad, nullptr, &bad, nullptr, nullptr),
            RADIASHAFTS_INVALID_ARGUMENT);
  bad = good;
  bad.colors = 3;
  EXPECT_EQ(radiashafts_render(session_, &bad, nullptr, &bad, nullptr, nullptr),
            RADIASHAFTS_INVALID_ARGUMENT);
  EXPECT_EQ(radiashafts_render(session_, &good, nullptr, &bad, nullptr, nullptr),
            RADIASHAFTS_INVALID_ARGUMENT);
}

}  // namespace
}  // namespace radiashafts::test
