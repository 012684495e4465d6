// The command line as a user meets it: the program is run, its files and messages are looked at.

#include <algorithm>
#include <array>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sstream>

#include <OpenImageIO/imageio.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "standin/picture_file.h"
#include "tests/support/test_folder.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

namespace fs = std::filesystem;
using OIIO::ImageSpec;
using OIIO::TypeDesc;

// Blending that leaves every pixel as it was: the brighter pixel wins, and the rays are black.
constexpr char untouched[] = " --intensity 0 --blend-mode maximum --quiet";

struct Answer {
  int exitCode;
  std::string out, err;
};

class CommandLine : public testing::Test, protected TestFolder {
 protected:
  Answer run(const std::string& arguments, const std::string& runner = "",
             const std::string& program = RADIASHAFTS_PROGRAM) const {
    const std::string command = "cd " + folder() + " && XDG_CONFIG_HOME=$PWD " + runner + " " +
                                program + " " + arguments + " >out.txt 2>err.txt";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, read("out.txt"), read("err.txt")};
  }

  // A mark of the file that the arguments make of in.png, in silence.
  std::size_t rendered(const std::string& arguments) const {
    const Answer answer = run("in.png out.png --quiet " + arguments);
    EXPECT_EQ(answer.out + answer.err, "") << arguments;
    return std::hash<std::string>()(read("out.png"));
  }

  void writePicture(const std::string& name, int channels, TypeDesc format,
                    void (*describe)(ImageSpec&) = nullptr) const {
    ImageSpec spec(37, 23, channels, format);
    if (channels == 2) spec.alpha_channel = 1;
    spec.attribute("oiio:UnassociatedAlpha", 1);
    if (describe != nullptr) describe(spec);
    Random random(7);
    std::vector<std::uint64_t> samples(static_cast<std::size_t>(2 * spec.width * spec.height));
    for (auto& sample : samples) sample = random();
    const auto output = OIIO::ImageOutput::create(path(name));
    EXPECT_TRUE(output != nullptr && output->open(path(name), spec));
    EXPECT_TRUE(output->write_image(format, samples.data()) && output->close());
  }

  // A dark picture of 120 x 80 with a soft light, and a brighter one that is transparent.
  void writeLight(const std::string& name, int channels, TypeDesc format, double x,
                  double y) const {
    ImageSpec spec(120, 80, channels, format);
    spec.attribute("oiio:UnassociatedAlpha", 1);
    if (channels == 2) spec.alpha_channel = 1;
    const bool hasAlpha = channels % 2 == 0;
    std::vector<float> samples;
    for (int row = 0; row < spec.height; ++row) {
      for (int column = 0; column < spec.width; ++column) {
        const double dx = (column + 0.5) / 120 - x, dy = ((row + 0.5) / 80 - y) * 2 / 3;
        const double light = 0.1 + 0.75 * std::exp(-(dx * dx + dy * dy) / 0.01);
        const bool transparent = hasAlpha && column > 90 && row > 55;
        const float color = transparent ? 1.0F : static_cast<float>(light);
        samples.insert(samples.end(), static_cast<std::size_t>(channels), color);
        if (hasAlpha) samples.back() = transparent ? 0.0F : 1.0F;
      }
    }
    if (format == TypeDesc::FLOAT) samples[samples.size() / 5] = std::nanf("");
    const auto output = OIIO::ImageOutput::create(path(name));
    EXPECT_TRUE(output != nullptr && output->open(path(name), spec));
    EXPECT_TRUE(output->write_image(TypeDesc::FLOAT, samples.data()) && output->close());
  }

  // The options that --auto has chosen for a picture.
  static std::string chosenFor(const std::string& name, const Answer& answer) {
    const std::string head = "note: " + name + ": auto: ";
    const std::size_t begin = answer.err.find(head);
    if (begin == std::string::npos) return "nothing in: " + answer.err;
    const std::size_t end = answer.err.find('\n', begin);
    return answer.err.substr(begin + head.size(), end - begin - head.size());
  }

  static double clippedShare(const standin::Picture& picture) {
    const auto count = std::count(picture.bytes.begin(), picture.bytes.end(), 255);
    return static_cast<double>(count) / static_cast<double>(picture.bytes.size());
  }

  // All samples as 16-bit words.
  std::vector<std::uint16_t> words(const std::string& name, ImageSpec* spec) const {
    ImageSpec wish;
    wish.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = OIIO::ImageInput::open(path(name), &wish);
    if (input == nullptr) return {};
    *spec = input->spec();
    std::vector<std::uint16_t> samples(spec->image_pixels() * spec->nchannels);
    EXPECT_TRUE(input->read_image(0, 0, 0, spec->nchannels, TypeDesc::UINT16, samples.data()));
    return samples;
  }
};

TEST_F(CommandLine, UntouchedSamplesComeBackAtEveryDepthAndChannelCount) {
  ImageSpec spec;
  for (int channels = 1; channels <= 5; ++channels) {
    for (const TypeDesc format : {TypeDesc::UINT8, TypeDesc::UINT16}) {
      writePicture("in.tif", channels, format);
      ASSERT_EQ(run(std::string("in.tif out.tif") + untouched).exitCode, 0);
      const auto before = words("in.tif", &spec), after = words("out.tif", &spec);
      EXPECT_TRUE(spec.format == format && spec.nchannels == channels);
      ASSERT_EQ(before.size(), after.size());
      const int rounding = format == TypeDesc::UINT8 ? 0 : 1;  // to the host's words, once
      for (std::size_t i = 0; i < before.size(); ++i) ASSERT_NEAR(after[i], before[i], rounding);
    }
  }
  ASSERT_EQ(run(std::string("in.tif a.exr") + untouched).exitCode, 0);
  ASSERT_EQ(run(std::string("a.exr b.exr") + untouched).exitCode, 0);
  const auto half = words("a.exr", &spec), halfBack = words("b.exr", &spec);
  for (std::size_t i = 0; i < half.size(); ++i) ASSERT_NEAR(halfBack[i], half[i], 70);
}

TEST_F(CommandLine, RendersWhatTheModuleRenders) {
  writePicture("in.png", 4, TypeDesc::UINT8);
  writePicture("mask.png", 1, TypeDesc::UINT8);
  const std::string options =
      "--mask mask.png --origin 0.2,1.1 --mode smooth --ray-length 0.8 --blend-mode \"max weight\" "
      "--color-low 1,0.5,0.2 --use-image-color off --selection-low 20";
  rendered(options);
  judge::Values values;
  values.originX = 0.2;
  values.originY = 1.1;
  values.mode = 2;
  values.rayLength = 0.8;
  values.blendMode = 2;
  values.colorLow[1] = 0.5;
  values.colorLow[2] = 0.2;
  values.useImageColor = false;
  values.selectionLow = 20.0;
  const std::string plain = read("out.png");
  // On one thread, too; the superuser has no limit.
  chmod(folder().c_str(), 0777);
  const std::string user =
      geteuid() == 0 ? "setpriv --reuid=65534 --regid=65534 --clear-groups " : "";
  EXPECT_EQ(run("in.png alone.png " + options, user + "prlimit --nproc=1").exitCode, 0);
  EXPECT_EQ(read("alone.png"), plain);
  const standin::Picture input = standin::readPictureFile(path("in.png")).picture;
  const standin::Mask mask = standin::readMaskFile(path("mask.png"));
  const standin::Picture expected = judge::render(input, mask.bytes.data(), values);
  EXPECT_EQ(standin::readPictureFile(path("out.png")).picture.bytes, expected.bytes);
}

TEST_F(CommandLine, MetadataSurvivesAndWhatTheFormatCannotHoldIsTold) {
  writePicture("in.tif", 4, TypeDesc::UINT16, [](ImageSpec& spec) {
    std::string profile(132, '\0');  // a header and no tags
    profile.replace(3, 1, "\204").replace(16, 4, "RGB ").replace(36, 4, "acsp");
    spec.attribute("ICCProfile", TypeDesc(TypeDesc::UINT8, 132), profile.data());
    spec.attribute("XResolution", 240.0F);
  });
  ASSERT_EQ(run("in.tif out.tif --quiet").exitCode, 0);
  ImageSpec spec;
  words("out.tif", &spec);
  EXPECT_NE(spec.find_attribute("ICCProfile"), nullptr);
  EXPECT_EQ(spec.get_float_attribute("XResolution"), 240.0F);
  const std::string notes = run("in.tif out.jpg").err;
  EXPECT_NE(notes.find("3 of the picture's 4 channels"), std::string::npos) << notes;
  EXPECT_NE(notes.find("depth is changed"), std::string::npos) << notes;
  // Nothing is said of an EXIF block without tags.
  const std::string block(
      "\xFF\xE1\0\x16"
      "Exif\0\0II*\0\x08\0\0\0\0\0\0\0\0\0",
      24);
  write("in.jpg", read("out.jpg").insert(2, block));
  EXPECT_EQ(run("in.jpg out.jpg").err, "");
}

// A mask lies where the user sees the picture, and a format without the tag has it upright, too.
TEST_F(CommandLine, PicturesAreTurnedUpright) {
  // By the number of the orientation.
  constexpr const char* stored[] = {"",       "ABCDEF", "CBAFED", "FEDCBA", "DEFABC",
                                    "ADBECF", "CFBEAD", "FCEBDA", "DAEBFC"};
  for (int orientation = 1; orientation <= 8; ++orientation) {
    const bool onItsSide = orientation >= 5;
    ImageSpec spec(onItsSide ? 2 : 3, onItsSide ? 3 : 2, 1, TypeDesc::UINT8);
    spec.attribute("Orientation", orientation);
    const auto output = OIIO::ImageOutput::create(path("in.tif"));
    ASSERT_TRUE(output->open(path("in.tif"), spec));
    ASSERT_TRUE(output->write_image(TypeDesc::UINT8, stored[orientation]) && output->close());
    for (const char* name : {"out.tif", "out.pgm"}) {
      ASSERT_EQ(run(std::string("in.tif ") + name + untouched).exitCode, 0);
      std::string found;
      for (const std::uint16_t word : words(name, &spec)) found += static_cast<char>(word / 257);
      EXPECT_EQ(found, "ABCDEF") << orientation;
      EXPECT_EQ(spec.width * 10 + spec.height, 32) << orientation;
      EXPECT_EQ(spec.get_int_attribute("Orientation", 1), 1) << orientation;
    }
    EXPECT_EQ(standin::readMaskFile(path("in.tif")).width, 3) << orientation;
  }
}

// One line that names the culprit, the exit code that the help tells, and the output as it was.
TEST_F(CommandLine, BadInputGetsOneLineAndTouchesNoOutput) {
  writePicture("in.png", 3, TypeDesc::UINT8);
  writePicture("mask.png", 1, TypeDesc::UINT8, [](ImageSpec& spec) { spec.height = 22; });
  write("out.png", "precious");
  write("kept.png", "precious");
  write("ours.cfg", "FileOwner Radiashafts\nname A\n");
  write("theirs.cfg", "FileOwner Them\nname A\n");
  write("short.png", read("in.png").substr(0, 900));
  ASSERT_EQ(run("in.png short.jpg --quiet").exitCode, 0);
  fs::resize_file(path("short.jpg"), fs::file_size(path("short.jpg")) - 40);
  chmod(path("kept.png").c_str(), 0444);
  fs::create_symlink("/dev/full", path("device.png"));

  struct {
    const char* arguments;
    int exitCode;
    const char* culprit;
  } const cases[] = {
      {"missing.png out.png", 3, "missing.png"},
      {"short.png out.png", 3, "short.png"},
      {"short.jpg out.png", 3, "short.jpg"},
      {"in.png out.png --mask mask.png --strict", 3, "mask.png"},
      {"in.png out.png --mask in.png", 3, "grey"},
      {"- out.png <short.png", 3, "standard input"},
      {"in.png --name '{stem}{x}'", 2, "{x}"},
      {"in.png out.nothing", 4, "out.nothing"},
      {"in.png kept.png", 4, "kept.png"},
      {"in.png device.png", 4, "device.png"},
      {"\"$(printf 'a\\nb\\033c\\302\\233d\\377')\" out.png", 3, "a\\nb\\x1bc\\xc2\\x9bd\\xff:"},
      {"in.png out.png --intensity nan", 2, "--intensity"},
      {"in.png out.png --origin 0.5", 2, "--origin"},
      {"in.png out.png --origin 7,px", 2, "--origin"},
      {"--save-preset ours.cfg:C --origin 7,9px", 2, "pixels"},
      {"in.png out.png --blend-mode 0", 2, "--blend-mode"},
      {"in.png out.png --use-image-color maybe", 2, "--use-image-color"},
      {"in.png mask.png out.png", 2, "--output-dir"},
      {"in.png out.png --frames 1-2", 2, "out.png has no place"},
      {"in.png out%d.png", 2, "--frames is needed"},
      {"in.png %d##.png --frames 1", 2, "more than one place"},
      {"in.png %d.png --frames 3-1", 2, "counts down"},
      {"in.png %d.png --frames 1-9x0", 2, "'1-9x0'"},
      {"in.png %d.png --frames 1-2 --chunk 3/2", 2, "'3/2'"},
      {"no%d.png %d.png", 3, "no%d.png"},
      {"in.png out.png --animate ours.cfg", 2, "--animate"},
      {"in.png ./in.png", 2, "--overwrite"},
      {"in.png out.png --module missing.so", 5, "missing.so"},
      {"in.png out.png --dialog", 2, "--dialog: the filter has no dialogs"},
      {"--save-preset 'C:\\ours.cfg'", 2, "C:\\ours.cfg"},
      {"in.png out.png --preset ours.cfg:B --last-used", 2, "--last-used"},
      {"in.png out.png --preset ours.cfg:B", 3, "'B'; --list-presets"},
      {"--save-preset theirs.cfg:A", 4, "filter Them"},
      {"in.png out.png --intesity=1", 2, "--intensity?"},
      {"in.png out.png --blend-mode screan", 2, "screen?"},
      {"in.png out.png --preset low_warm_son", 3, "low_warm_sun?"},
  };
  for (const auto& c : cases) {
    const Answer answer = run(c.arguments);
    EXPECT_EQ(answer.exitCode, c.exitCode) << c.arguments;
    EXPECT_EQ(std::count(answer.err.begin(), answer.err.end(), '\n'), 1) << answer.err;
    EXPECT_NE(answer.err.find(c.culprit), std::string::npos) << c.arguments << ": " << answer.err;
    EXPECT_EQ(read("out.png") + read("kept.png"), "preciousprecious") << c.arguments;
  }
  EXPECT_TRUE(fs::is_symlink(path("device.png")));
  // A bad one of several is told, and the others are made, in their order.
  write("later.png", read("in.png"));
  const std::string three = "in.png short.png later.png --output-dir new/results";
  const auto made = [this] {
    return std::distance(fs::directory_iterator(path("new/results")), {});
  };
  EXPECT_EQ(run(three + " --fail-fast").exitCode, 3);
  EXPECT_EQ(read("out.txt").rfind("new/results/in.png: 37 x 23 pixels", 0), 0U);
  EXPECT_EQ(made(), 1);
  const Answer answer = run(three + " --skip-existing");
  EXPECT_EQ(answer.exitCode, 1);
  EXPECT_EQ(answer.out.rfind("new/results/later.png", 0), 0U) << answer.out;
  EXPECT_NE(answer.err.find("1 of 2 pictures failed: short.png\n"), std::string::npos);
  EXPECT_EQ(made(), 2);
  EXPECT_EQ(run("short.png missing.png --output-dir new").exitCode, 3);
}

// Reached by a link; also without /proc, a home or a temporary folder.
TEST_F(CommandLine, InstalledAnywhereItFindsItsFiles) {
  writePicture("in.png", 3, TypeDesc::UINT8);
  const std::string options = "--preset low_warm_sun";
  const std::size_t built = rendered(options);
  const std::string install = "cmake --install " RADIASHAFTS_BUILD " --prefix " + path("usr");
  ASSERT_EQ(std::system((install + " >" + path("install.txt")).c_str()), 0);
  fs::create_symlink("usr/bin/radiashafts", path("linked"));
  const std::string bare =
      "unshare --map-root-user --mount sh -c 'mount -t tmpfs none /proc && "
      "exec env -i TMPDIR=/nowhere \"$@\"' sh";
  for (const std::string& runner : {std::string(), bare}) {
    EXPECT_EQ(run("in.png out.png --quiet " + options, runner, "./linked").err, "");
    EXPECT_EQ(std::hash<std::string>()(read("out.png")), built) << runner;
    fs::remove(path("out.png"));
  }
}

TEST_F(CommandLine, AutoFindsTheLightOfEachPictureAtEveryDepth) {
  struct {
    const char* name;
    int channels;
    TypeDesc format;
    double x, y;
  } const cases[] = {
      {"grey.png", 1, TypeDesc::UINT8, 0.3, 0.7},   {"greya.tif", 2, TypeDesc::UINT16, 0.3, 0.2},
      {"rgb.tif", 3, TypeDesc::UINT16, 0.75, 0.25}, {"rgba.png", 4, TypeDesc::UINT8, 0.2, 0.3},
      {"nan.exr", 3, TypeDesc::FLOAT, 0.6, 0.4},    {"edge.png", 3, TypeDesc::UINT8, 0.4, 0.0},
  };
  std::string inputs;
  for (const auto& c : cases) {
    writeLight(c.name, c.channels, c.format, c.x, c.y);
    inputs += c.name + std::string(" ");
  }
  const Answer answer = run(inputs + "--auto --output-dir made --ray-length 0.5");
  EXPECT_EQ(answer.exitCode, 0) << answer.err;
  for (const auto& c : cases) {
    double x = 0, y = 0;
    const std::string options = chosenFor(c.name, answer);
    ASSERT_EQ(std::sscanf(options.c_str(), "--origin %lf,%lf --intensity", &x, &y), 2) << options;
    EXPECT_NEAR(x, c.x, 0.03) << c.name;
    EXPECT_NEAR(y, c.y, 0.05) << c.name;
  }
  // The options that are told make the same picture.
  const std::string options = chosenFor("rgb.tif", answer);
  EXPECT_EQ(run("rgb.tif again.tif --ray-length 0.5 " + options).exitCode, 0);
  const auto samples = [this](const char* name) {
    return standin::readPictureFile(path(name)).picture.bytes;
  };
  EXPECT_TRUE(samples("again.tif") == samples("made/rgb.tif")) << options;
}

TEST_F(CommandLine, AutoHeedsTheMaskAndValuesByHandAndDoesNotClip) {
  writeLight("in.png", 3, TypeDesc::UINT8, 0.25, 0.5);
  std::string darkHalf;
  for (int row = 0; row < 80; ++row) darkHalf += std::string(60, '\0') + std::string(60, '\xFF');
  write("dark.pgm", "P5 120 80 255\n" + darkHalf);
  EXPECT_EQ(chosenFor("in.png", run("in.png out.png --auto")).rfind("--origin 0.25,0.5 ", 0), 0U);
  EXPECT_EQ(chosenFor("in.png", run("in.png out.png --auto --mask dark.pgm")).rfind("finds no", 0),
            0U);
  const standin::Picture input = standin::readPictureFile(path("in.png")).picture;
  const auto addedClipping = [&](const std::string& options) {
    EXPECT_EQ(run("in.png out.png --quiet " + options).exitCode, 0);
    return clippedShare(standin::readPictureFile(path("out.png")).picture) - clippedShare(input);
  };
  EXPECT_GT(addedClipping("--intensity 5"), 0.05);
  EXPECT_LE(addedClipping("--preset low_warm_sun --auto"), 0.01);
  EXPECT_EQ(chosenFor("in.png", run("in.png out.png --auto --intensity 5 --origin 0.9,0.1"))
                .rfind("--selection-low ", 0),
            0U);
  // Without a light.
  write("flat.pgm", "P5 40 30 255\n" + std::string(std::size_t{40} * 30, 'x'));
  const Answer answer = run("flat.pgm flat.png --auto");
  EXPECT_EQ(answer.exitCode, 0);
  EXPECT_NE(answer.err.find("flat.pgm: auto: finds no light"), std::string::npos) << answer.err;
  EXPECT_EQ(answer.err.find("--origin"), std::string::npos) << answer.err;
  EXPECT_EQ(run("flat.pgm none.png --auto --strict").exitCode, 3);
  EXPECT_FALSE(fs::exists(path("none.png")));
}

// By day a white thing is no light, and it does not hide a sun.
TEST_F(CommandLine, AutoTellsASunFromAWhiteThing) {
  const auto writeDay = [this](const char* name, double glow, int thing) {
    std::string samples;
    for (int y = 0; y < 120; ++y) {
      for (int x = 0; x < 180; ++x) {
        const bool white = x >= 130 && x < 150 && y >= 70 && y < 90;
        const double distance = std::hypot(x - 50, y - 40);
        const double sky = std::min(130 + glow * std::exp(-distance / 30), 255.0);
        samples += static_cast<char>(white ? thing : static_cast<int>(sky));
      }
    }
    write(name, "P5 180 120 255\n" + samples);
  };
  for (const int thing : {228, 255}) {
    writeDay("thing.pgm", 0, thing);
    const std::string note = chosenFor("thing.pgm", run("thing.pgm out.png --auto --overwrite"));
    EXPECT_EQ(note.rfind("finds no light", 0), 0U) << thing;
  }
  writeDay("sun.pgm", 200, 228);
  double x = 0, y = 0;
  const std::string options = chosenFor("sun.pgm", run("sun.pgm out.png --auto"));
  ASSERT_EQ(std::sscanf(options.c_str(), "--origin %lf,%lf ", &x, &y), 2) << options;
  EXPECT_NEAR(x, 50.5 / 180, 0.03);
  EXPECT_NEAR(y, 40.5 / 120, 0.05);
}

TEST_F(CommandLine, PipesPatternsAndManyFilesAtOnceMakeTheSamePictures) {
  writePicture("a.png", 3, TypeDesc::UINT8);
  ASSERT_EQ(run("a.png plain.png --quiet").exitCode, 0);
  fs::create_directory(path("temporary"));
  EXPECT_EQ(run("- -", "cat a.png | TMPDIR=temporary").out, read("plain.png"));
  EXPECT_TRUE(fs::is_empty(path("temporary")));
  EXPECT_EQ(run("- out.png", "TMPDIR=missing").exitCode, 3);
  EXPECT_EQ(read("err.txt").rfind("radiashafts: standard input: no folder for temp", 0), 0U);

  // Scaled masks, of 16 bits and of 8: all of b, and some rows of c as of d.
  for (const char* name : {"b.png", "c.png", "d.png", "e.png"}) write(name, read("a.png"));
  write("b.mask", "P5 3 2 65535\n" + std::string(12, '\xFF'));
  std::string rows(23, '\0'), pixels;
  std::fill_n(rows.begin() + 2, 6, '\xFF');
  for (const char row : rows) pixels += std::string(37, row);
  write("c.mask", "P5 1 23 255\n" + rows);
  write("d.mask", "P5 37 23 255\n" + pixels);
  const Answer answer =
      run("b.png c.png d.png e.png --jobs 3 --json --name '{stem}-rays.png' --mask '{stem}.mask'");
  EXPECT_EQ(answer.exitCode, 1);
  EXPECT_EQ(answer.out.rfind(R"({"input":"b.png","output":"b-rays.png","width":37,)", 0), 0U);
  const std::size_t second = answer.out.find("c.mask: the mask is 1 x 23"),
                    last = answer.out.find(R"("error":"e.mask: no such file","exitCode":3})");
  EXPECT_TRUE(second < last && last != std::string::npos) << answer.out;
  EXPECT_EQ(read("b-rays.png"), read("plain.png"));
  EXPECT_EQ(read("c-rays.png"), read("d-rays.png"));
  EXPECT_NE(read("d-rays.png"), read("plain.png"));
}

// The last byte, or a quarter of the file, finds no room.
TEST_F(CommandLine, AFullDiskLeavesTheOldPicture) {
  writePicture("in.tif", 3, TypeDesc::UINT8);
  fs::create_directory(path("results"));
  for (const char* name : {"o.bmp", "o.exr", "o.gif", "o.hdr", "o.jpg", "o.png", "o.ppm", "o.sgi",
                           "o.tga", "o.tif", "o.webp"}) {
    const std::string place = std::string("results/") + name;
    ASSERT_EQ(run("in.tif --quiet " + place).exitCode, 0) << name;
    const std::uintmax_t size = fs::file_size(path(place));
    chmod(path(place).c_str(), 0640);
    for (const std::uintmax_t room : {size - 1, size * 3 / 4}) {
      write(place, "precious");
      const Answer answer = run("in.tif " + place, "prlimit --fsize=" + std::to_string(room));
      EXPECT_EQ(answer.exitCode, 4) << name << room;
      EXPECT_EQ(answer.err.rfind("radiashafts: " + place, 0), 0U) << answer.err;
      EXPECT_EQ(read(place), "precious") << name;
    }
    if (name == std::string("o.tif")) run("in.tif --quiet " + place);
    EXPECT_EQ(fs::status(path(place)).permissions(), fs::perms(0640));
    fs::remove(path(place));
    EXPECT_TRUE(fs::is_empty(path("results"))) << name;
  }
}

TEST_F(CommandLine, PresetsAndLastUsedValuesAreStartedFromAndOptionsGoOverThem) {
  writePicture("in.png", 3, TypeDesc::UINT8);
  const std::string morning =
      " --origin 0.25,-0.125 --mode smooth --use-image-color off --color-low 1,0.5,0.25"
      " --blend-mode subtraction --selection-low 100 --ray-length 0.5";
  Answer answer = run("--save-preset 'p:q.cfg:Z' --intensity 0.25" + morning);
  EXPECT_EQ(answer.out + answer.err, "p:q.cfg: has preset Z\n");
  const std::string file = read("p:q.cfg");
  EXPECT_NE(file.find("name Z\nOrigin 0.250000 -0.125000\nIntensity 0.250000\nRayLength 0.500000\n"
                      "Radius 2.000000\n"),
            std::string::npos)
      << file;
  EXPECT_NE(file.find("UseImageColor 0\n"), std::string::npos);
  EXPECT_NE(file.find("Mode 2\nBlendMode 6\nSelectionShow 1\n"), std::string::npos);
  answer =
      run("--hue 9 --radius -1 --preset p:q.cfg:z --save-preset 'p:q.cfg:a b' --intensity 0.5");
  EXPECT_EQ(answer.out, "p:q.cfg: has preset a_b\n");
  EXPECT_NE(answer.err.find("--radius"), std::string::npos) << answer.err;
  EXPECT_NE(answer.err.find("--hue"), std::string::npos) << answer.err;
  EXPECT_EQ(run("--list-presets p:q.cfg").out, "Z\na_b\n");
  answer = run("--list-presets");
  EXPECT_NE(answer.out.find("\nlow_warm_sun "), std::string::npos);
  std::istringstream listed(answer.out);
  for (std::string line; std::getline(listed, line);) {
    EXPECT_NE(line.find_first_not_of(' ', line.find(' ')), std::string::npos) << line;
  }
  EXPECT_EQ(rendered("--preset low_warm_sun --color-low '#ff6600'"),
            rendered("--preset " RADIASHAFTS_PRESETS ":low_warm_sun --color-low 1,0.4,0"));
  const std::size_t plain = rendered("--intensity 0.25" + morning);
  const std::size_t strong = rendered("--intensity 3" + morning);
  EXPECT_NE(plain, strong);
  write("nothing.pgm", "P5 37 23 255\n" + std::string(std::size_t{37} * 23, '\0'));
  EXPECT_EQ(rendered("--mask nothing.pgm"), rendered(untouched));
  EXPECT_EQ(rendered("--preset p:q.cfg:Z"), plain);
  EXPECT_EQ(rendered("--preset p:q.cfg:Z --origin 9,23px"),
            rendered("--preset p:q.cfg:Z --origin 0.24324324324324326,1"));
  fs::create_directory(path("radiashafts"));
  write("radiashafts/settings",
        "[SOFTWARE\\Halvorsund\\Photoshop\\Radiashafts\\LastUsed]\nIntensity = "
        "bytes:555555555555d53f");
  EXPECT_EQ(rendered("--last-used --hue 0.5"),
            rendered("--intensity 0.33333333333333331 --hue 0.5"));
  EXPECT_EQ(rendered("--intensity 3 --preset 'p:q.cfg:a b' --radius 2 --hue 0"), strong);
}

// The exit code of the program on a terminal of its own, asked to end in a moment of its run.
int endedBy(int signal, const std::string& input, const std::string& output,
            const std::function<void(int terminal)>& awaitMoment) {
  int terminal = -1;
  const pid_t process = forkpty(&terminal, nullptr, nullptr, nullptr);
  if (process == 0) {
    std::signal(SIGHUP, SIG_DFL);
    execl(RADIASHAFTS_PROGRAM, RADIASHAFTS_PROGRAM, input.c_str(), output.c_str(), nullptr);
    _exit(1);
  }
  awaitMoment(terminal);
  kill(process, signal);
  std::string said;
  for (char byte = 0; read(terminal, &byte, 1) == 1;) said += byte;
  EXPECT_NE(said.find("radiashafts: interrupted\r\n"), std::string::npos) << said;
  close(terminal);
  int status = 0;
  waitpid(process, &status, 0);
  return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

TEST_F(CommandLine, ARequestToEndIsFollowedAnywhereAndLeavesNothingBehind) {
  ASSERT_EQ(mkfifo(path("pipe.png").c_str(), 0600), 0);
  fs::create_directory(path("results"));
  const std::string output = path("results/out.png");
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    int pipe = -1;
    const auto reading = [&](int) { pipe = open(path("pipe.png").c_str(), O_WRONLY); };
    EXPECT_EQ(endedBy(signal, path("pipe.png"), output, reading), 128 + signal);
    close(pipe);
  }
  write("big.ppm", "P6 6000 4000 255\n" + std::string(std::size_t{6000} * 4000 * 3, 'x'));
  const auto rendering = [](int terminal) {
    char byte = 0;
    while (byte != '[' && ::read(terminal, &byte, 1) == 1) continue;  // the bar of its progress
  };
  EXPECT_EQ(endedBy(SIGTERM, path("big.ppm"), output, rendering), 128 + SIGTERM);
  const auto writing = [&](int) {
    for (int waited = 0; waited < 120000 && fs::is_empty(path("results")); ++waited) usleep(1000);
  };
  EXPECT_EQ(endedBy(SIGHUP, path("big.ppm"), output, writing), 128 + SIGHUP);
  EXPECT_TRUE(fs::is_empty(path("results")));
}

}  // namespace
}  // namespace radiashafts::test
