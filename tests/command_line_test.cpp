// The command line as a user meets it: the program is run, its files and messages are looked at.

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <set>
#include <sstream>

#include <OpenImageIO/imageio.h>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <pty.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include "interface/model/remembered_settings.h"
#include "parameters/effect_parameters.h"
#include "standin/picture_file.h"
#include "tests/support/module_under_test.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

namespace fs = std::filesystem;
using OIIO::ImageInput;
using OIIO::ImageOutput;
using OIIO::ImageSpec;
using OIIO::TypeDesc;

// Blending that leaves every pixel as it was: the brighter pixel wins, and the rays are black.
constexpr char untouched[] = " --intensity 0 --blend-mode maximum --quiet";

struct Answer {
  int exitCode;
  std::string out;
  std::string err;
};

std::string contentOf(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  std::ostringstream content;
  content << stream.rdbuf();
  return content.str();
}

class CommandLine : public testing::Test {
 protected:
  CommandLine() {
    std::string pattern = (fs::temp_directory_path() / "radiashafts-XXXXXX").string();
    folder_ = mkdtemp(pattern.data());
  }
  ~CommandLine() override { fs::remove_all(folder_); }

  Answer run(const std::string& arguments, const std::string& runner = "") const {
    const std::string command = "cd " + folder_.string() + " && XDG_CONFIG_HOME=$PWD " + runner +
                                " " RADIASHAFTS_PROGRAM " " + arguments + " >out.txt 2>err.txt";
    const int status = std::system(command.c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, contentOf(folder_ / "out.txt"),
            contentOf(folder_ / "err.txt")};
  }

  // A mark of the file that the arguments make of in.png, in silence.
  std::size_t rendered(const std::string& arguments) const {
    const Answer answer = run("in.png out.png --quiet " + arguments);
    EXPECT_EQ(answer.out + answer.err, "") << arguments;
    return std::hash<std::string>()(contentOf(path("out.png")));
  }

  template <class Sample>
  std::vector<Sample> write(const std::string& name, int channels, TypeDesc format,
                            void (*describe)(ImageSpec&) = nullptr) const {
    ImageSpec spec(width, height, channels, format);
    if (channels == 2) spec.alpha_channel = 1;
    spec.attribute("oiio:UnassociatedAlpha", 1);
    if (describe != nullptr) describe(spec);
    std::vector<Sample> samples(static_cast<std::size_t>(width * height * channels));
    Random random(7);
    for (Sample& sample : samples) sample = static_cast<Sample>(random());
    const auto output = ImageOutput::create(path(name).string());
    EXPECT_TRUE(output != nullptr && output->open(path(name).string(), spec));
    EXPECT_TRUE(output->write_image(format, samples.data()) && output->close());
    return samples;
  }

  template <class Sample>
  std::vector<Sample> read(const std::string& name, TypeDesc format, ImageSpec* spec) const {
    ImageSpec wish;
    wish.attribute("oiio:UnassociatedAlpha", 1);
    const auto input = ImageInput::open(path(name).string(), &wish);
    if (input == nullptr) return {};
    *spec = input->spec();
    std::vector<Sample> samples(static_cast<std::size_t>(width * height * spec->nchannels));
    EXPECT_TRUE(input->read_image(0, 0, 0, spec->nchannels, format, samples.data()));
    return samples;
  }

  fs::path path(const std::string& name) const { return folder_ / name; }
  bool exists(const std::string& name) const { return fs::exists(path(name)); }

  static constexpr int width = 37;
  static constexpr int height = 23;

 private:
  fs::path folder_;
};

TEST_F(CommandLine, UntouchedSamplesComeBackAtEveryDepthAndChannelCount) {
  for (int channels = 1; channels <= 5; ++channels) {
    ImageSpec spec;
    const auto bytes = write<std::uint8_t>("8.tif", channels, TypeDesc::UINT8);
    ASSERT_EQ(run(std::string("8.tif 8o.tif") + untouched).exitCode, 0);
    EXPECT_EQ(read<std::uint8_t>("8o.tif", TypeDesc::UINT8, &spec), bytes) << channels;
    EXPECT_EQ(spec.format, TypeDesc::UINT8);
    EXPECT_EQ(spec.nchannels, channels);

    const auto words = write<std::uint16_t>("16.tif", channels, TypeDesc::UINT16);
    ASSERT_EQ(run(std::string("16.tif 16o.tif") + untouched).exitCode, 0);
    const auto wordsBack = read<std::uint16_t>("16o.tif", TypeDesc::UINT16, &spec);
    ASSERT_EQ(wordsBack.size(), words.size());
    for (std::size_t i = 0; i < words.size(); ++i) ASSERT_NEAR(wordsBack[i], words[i], 1);
    // What came from a host once stays for good.
    ASSERT_EQ(run(std::string("16o.tif 16p.tif") + untouched).exitCode, 0);
    EXPECT_EQ(read<std::uint16_t>("16p.tif", TypeDesc::UINT16, &spec), wordsBack);
  }
  ImageSpec spec;
  write<std::uint8_t>("start.tif", 4, TypeDesc::UINT8);
  ASSERT_EQ(run(std::string("start.tif a.exr") + untouched).exitCode, 0);
  ASSERT_EQ(run(std::string("a.exr b.exr") + untouched).exitCode, 0);
  const auto half = read<float>("a.exr", TypeDesc::FLOAT, &spec);
  const auto halfBack = read<float>("b.exr", TypeDesc::FLOAT, &spec);
  EXPECT_EQ(spec.format, TypeDesc::HALF);
  for (std::size_t i = 0; i < half.size(); ++i) ASSERT_NEAR(halfBack[i], half[i], 1e-3);
}

TEST_F(CommandLine, RendersWhatTheModuleRenders) {
  write<std::uint8_t>("in.png", 4, TypeDesc::UINT8);
  write<std::uint8_t>("mask.png", 1, TypeDesc::UINT8);
  const Answer answer =
      run("in.png out.png --mask mask.png --origin 0.2,1.1 --mode smooth "
          "--ray-length 0.8 --blend-mode \"max weight\" --color-low 1,0.5,0.2 "
          "--use-image-color off --selection-low 20 --quiet");
  ASSERT_EQ(answer.exitCode, 0) << answer.err;
  EXPECT_EQ(answer.out + answer.err, "");

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
  const standin::Picture input = standin::readPictureFile(path("in.png")).picture;
  const standin::Mask mask = standin::readMaskFile(path("mask.png"));
  const judge::Picture expected = judge::render(judgePicture(input), mask.bytes.data(), values);
  EXPECT_EQ(standin::readPictureFile(path("out.png")).picture.bytes,
            storedPicture(expected, input).bytes);
}

TEST_F(CommandLine, MetadataSurvives) {
  write<std::uint8_t>("in.tif", 3, TypeDesc::UINT8, [](ImageSpec& spec) {
    const std::array<std::uint8_t, 4> profile{1, 2, 3, 4};
    spec.attribute("ICCProfile", TypeDesc(TypeDesc::UINT8, 4), profile.data());
    spec.attribute("XResolution", 240.0F);
    spec.attribute("YResolution", 240.0F);
    spec.attribute("Orientation", 6);
    spec.attribute("Artist", "somebody");
  });
  ASSERT_EQ(run("in.tif out.tif --quiet").exitCode, 0);
  ImageSpec spec;
  read<std::uint8_t>("out.tif", TypeDesc::UINT8, &spec);
  EXPECT_NE(spec.find_attribute("ICCProfile"), nullptr);
  EXPECT_EQ(spec.get_float_attribute("XResolution"), 240.0F);
  EXPECT_EQ(spec.get_int_attribute("Orientation"), 6);
  EXPECT_EQ(spec.get_string_attribute("Artist"), "somebody");
}

TEST_F(CommandLine, SaysWhatTheFormatCannotHold) {
  write<std::uint16_t>("in.tif", 4, TypeDesc::UINT16);
  const Answer answer = run("in.tif out.jpg");
  EXPECT_EQ(answer.exitCode, 0);
  EXPECT_NE(answer.err.find("3 of the picture's 4 channels"), std::string::npos) << answer.err;
  EXPECT_NE(answer.err.find("depth is changed"), std::string::npos) << answer.err;
}

// One line that names the culprit, the exit code that the help tells, and the output as it was.
TEST_F(CommandLine, BadInputGetsOneLineAndTouchesNoOutput) {
  write<std::uint8_t>("in.png", 3, TypeDesc::UINT8);
  write<std::uint8_t>("mask.png", 1, TypeDesc::UINT8, [](ImageSpec& spec) { spec.height = 22; });
  std::ofstream(path("text.png")) << "no picture";
  std::ofstream(path("out.png")) << "precious";
  std::ofstream(path("ours.cfg")) << "FileOwner Radiashafts\nname A\n";
  std::ofstream(path("theirs.cfg")) << "FileOwner Them\nname A\n";
  fs::copy_file(path("in.png"), path("short.png"));
  fs::resize_file(path("short.png"), fs::file_size(path("short.png")) / 2);
  ASSERT_EQ(run("in.png short.jpg --quiet").exitCode, 0);
  fs::resize_file(path("short.jpg"), fs::file_size(path("short.jpg")) - 40);
  std::ofstream(path("wide.ppm")) << "P5 40000 1 255\n" << std::string(40000, 'x');
  std::ofstream(path("kept.png")) << "precious";
  chmod(path("kept.png").c_str(), 0444);
  mkfifo(path("pipe.png").c_str(), 0600);
  fs::create_symlink("nowhere.png", path("lost.png"));
  fs::create_symlink("/dev/full", path("device.png"));
  fs::create_directory(path("folder.png"));

  struct {
    const char* arguments;
    int exitCode;
    const char* culprit;
  } const cases[] = {
      {"missing.png out.png", 3, "missing.png"},
      {"text.png out.png", 3, "text.png"},
      {"short.png out.png", 3, "short.png"},
      {"short.jpg out.png", 3, "short.jpg"},
      {"wide.ppm out.png", 3, "wide.ppm"},
      {"in.png out.png --mask mask.png", 3, "mask.png"},
      {"in.png out.png --mask in.png", 3, "in.png"},
      {"in.png nowhere/out.png", 4, "nowhere/out.png"},
      {"in.png out.nothing", 4, "out.nothing"},
      {"in.png 'out.png?'", 4, "out.png?"},
      {"in.png kept.png", 4, "kept.png"},
      {"in.png pipe.png", 4, "pipe.png"},
      {"in.png lost.png", 4, "lost.png"},
      {"in.png device.png", 4, "device.png"},
      {"in.png folder.png", 4, "folder.png"},
      {"\"$(printf 'a\\nb\\033c\\302\\233d\\377')\" out.png", 3, "a\\nb\\x1bc\\xc2\\x9bd\\xff:"},
      {"in.png --output-dir \"$(printf 'a\\nb')\"", 2, "a\\nb:"},
      {"--list-presets \"$(printf 'a\\nb')\"", 3, "a\\nb:"},
      {"in.png out.png --ray-size 3", 2, "--ray-size"},
      {"in.png out.png --ray-length long", 2, "--ray-length"},
      {"in.png out.png --intensity nan", 2, "--intensity"},
      {"in.png out.png --origin 0.5", 2, "--origin"},
      {"in.png out.png --blend-mode burn", 2, "--blend-mode"},
      {"in.png out.png --blend-mode 24", 2, "--blend-mode"},
      {"in.png out.png --use-image-color maybe", 2, "--use-image-color"},
      {"in.png", 2, "OUTPUT"},
      {"in.png text.png out.png", 2, "--output-dir"},
      {"in.png out.png --module missing.so", 5, "missing.so"},
      {"in.png out.png --preset ours.cfg", 2, "ours.cfg"},
      {"in.png out.png --preset ours.cfg:", 2, "ours.cfg:"},
      {"in.png out.png --preset ''", 2, "FILE:NAME"},
      {"--save-preset 'C:\\ours.cfg'", 2, "C:\\ours.cfg"},
      {"in.png out.png --preset ours.cfg:B --last-used", 2, "--last-used"},
      {"in.png out.png --preset ours.cfg:B", 3, "'B'; --list-presets"},
      {"in.png out.png --preset theirs.cfg:A", 3, "filter Them"},
      {"in.png out.png --preset missing.cfg:A", 3, "missing.cfg"},
      {"in.png out.png --last-used", 3, "--last-used"},
      {"--list-presets text.png", 3, "text.png"},
      {"--list-presets missing.cfg", 3, "missing.cfg"},
      {"--save-preset theirs.cfg:A", 4, "filter Them"},
      {"--save-preset nowhere/new.cfg:A", 4, "nowhere/new.cfg"},
      {"--preset ours.cfg:A", 2, "INPUT"},
  };
  for (const auto& c : cases) {
    const Answer answer = run(c.arguments);
    EXPECT_EQ(answer.exitCode, c.exitCode) << c.arguments;
    EXPECT_EQ(std::count(answer.err.begin(), answer.err.end(), '\n'), 1) << answer.err;
    EXPECT_NE(answer.err.find(c.culprit), std::string::npos) << c.arguments << ": " << answer.err;
    EXPECT_EQ(contentOf(path("out.png")), "precious") << c.arguments;
  }
  EXPECT_EQ(contentOf(path("kept.png")), "precious");
  EXPECT_TRUE(fs::is_fifo(path("pipe.png")) && fs::is_symlink(path("device.png")));
  EXPECT_FALSE(exists("lost.png"));
}

// The last byte, or a quarter of the file, finds no room.
TEST_F(CommandLine, AFullDiskLeavesTheOldPicture) {
  write<std::uint8_t>("in.tif", 3, TypeDesc::UINT8);
  fs::create_directory(path("results"));
  for (const char* name : {"o.bmp", "o.exr", "o.gif", "o.hdr", "o.jpg", "o.png", "o.ppm", "o.sgi",
                           "o.tga", "o.tif", "o.webp"}) {
    const std::string place = std::string("results/") + name;
    ASSERT_EQ(run("in.tif --quiet " + place).exitCode, 0) << name;
    const std::uintmax_t size = fs::file_size(path(place));
    for (const std::uintmax_t room : {size - 1, size * 3 / 4}) {
      std::ofstream(path(place)) << "precious";
      const Answer answer = run("in.tif " + place, "prlimit --fsize=" + std::to_string(room));
      EXPECT_EQ(answer.exitCode, 4) << name << room;
      EXPECT_EQ(answer.err.rfind("radiashafts: " + place, 0), 0U) << answer.err;
      EXPECT_EQ(std::count(answer.err.begin(), answer.err.end(), '\n'), 1) << answer.err;
      EXPECT_EQ(contentOf(path(place)), "precious") << name;
    }
    fs::remove(path(place));
    EXPECT_TRUE(fs::is_empty(path("results"))) << name;
  }
}

// Values as options, and the file that keeps them.
constexpr char morning[] =
    " --origin 0.25,-0.125 --mode smooth --use-image-color off --color-low 1,0.5,0.25"
    " --blend-mode difference --selection-low 100 --ray-length 0.5";
constexpr char morningFile[] =
    "FileOwner Radiashafts\n\nname Z\nOrigin 0.250000 -0.125000\nIntensity 0.250000\n"
    "RayLength 0.500000\nRadius 2.000000\nContrast 0.000000\nGammaCorrection 1.000000\n"
    "ColorBalance 0.000000\nUseImageColor 0\nHue 0.000000\nSaturation 0.000000\n"
    "Lightness 0.000000\nSelectionLow 100.000000\nSelectionHigh 255.000000\n"
    "SelectionSoften 0.000000\nSelectionClimax 1.000000\nColorLow 1.000000 0.500000 0.250000\n"
    "ColorHigh 1.000000 1.000000 1.000000\nMode 2\nBlendMode 9\nSelectionShow 1\n";

TEST_F(CommandLine, PresetsKeepValuesAndOptionsGoOverThem) {
  write<std::uint8_t>("in.png", 3, TypeDesc::UINT8);
  Answer answer = run("--save-preset 'p q.cfg:Z' --intensity 0.25" + std::string(morning));
  EXPECT_EQ(answer.out + answer.err, "p q.cfg: has preset Z\n");
  EXPECT_EQ(contentOf(path("p q.cfg")), morningFile);
  answer = run("--radius -1 --preset 'p q.cfg:z' --save-preset 'p q.cfg:a b' --intensity 0.5");
  EXPECT_EQ(answer.out, "p q.cfg: has preset a_b\n");
  EXPECT_NE(answer.err.find("--radius"), std::string::npos) << answer.err;
  EXPECT_NE(contentOf(path("p q.cfg")).find("Intensity 0.500000\nRayLength 0.500000\nRadius 0.0"),
            std::string::npos);
  EXPECT_EQ(run("--list-presets 'p q.cfg'").out, "Z\na_b\n");

  const std::size_t plain = rendered("--intensity 0.25" + std::string(morning));
  const std::size_t strong = rendered("--intensity 3" + std::string(morning));
  EXPECT_NE(plain, strong);
  EXPECT_EQ(rendered("--preset 'p q.cfg:Z'"), plain);
  EXPECT_EQ(rendered("--intensity 3 --preset './p q.cfg:Z'"), strong);
  EXPECT_EQ(rendered("--intensity 3 --preset 'p q.cfg:a b' --radius 2"), strong);
  EXPECT_EQ(rendered("--save-preset 'p q.cfg:Z' --intensity 3" + std::string(morning)), strong);
  EXPECT_EQ(rendered("--preset 'p q.cfg:Z'"), strong);
  EXPECT_EQ(run("--list-presets 'p q.cfg'").out, "Z\na_b\n");
}

// The presets that come with the program: whole, within the sliders, and no two of one effect.
TEST_F(CommandLine, EachPresetOfTheCollectionMakesAPictureOfItsOwn) {
  write<std::uint8_t>("in.png", 3, TypeDesc::UINT8);
  const std::string collection = "'" RADIASHAFTS_COLLECTION "'";
  std::istringstream file(contentOf(RADIASHAFTS_COLLECTION));
  std::string word, name, names;
  ASSERT_TRUE(file >> word >> name && word == "FileOwner" && name == "Radiashafts");
  std::set<std::size_t> pictures{rendered(untouched)};
  while (file >> word >> name) {
    SCOPED_TRACE(name);
    ASSERT_EQ(word, "name");
    names += name + '\n';
    for (const ParameterFacts& facts : effectTable) {
      if (!facts.storedInPreset) continue;
      ASSERT_TRUE(file >> word && word == facts.name) << word << " for " << facts.name;
      for (int i = 0; i < valueCount(facts.kind); ++i) {
        double value = 0.0;
        ASSERT_TRUE(file >> value) << facts.name;
        if (facts.kind == ParameterKind::position) continue;
        EXPECT_TRUE(facts.minimum <= value && value <= facts.maximum) << facts.name;
      }
    }
    EXPECT_TRUE(pictures.insert(rendered("--preset " + collection + ":" + name)).second);
  }
  EXPECT_GE(pictures.size(), 1 + 24u);
  EXPECT_EQ(run("--list-presets " + collection).out, names);
}

TEST_F(CommandLine, LastUsedValuesAreThoseOfTheUsersStore) {
  write<std::uint8_t>("in.png", 3, TypeDesc::UINT8);
  EffectParameters effect;
  effect.Origin.SetValue(0.25, -0.125);
  effect.Mode.SetValue(2);
  effect.Intensity.SetValue(1.0 / 3.0);
  effect.SelectionLow.SetValue(100.0);
  pfParameters parameters;
  for (pfParameter* parameter : effect.all) parameters.Add(parameter);
  setenv("XDG_CONFIG_HOME", path("").c_str(), 1);
  WriteLastUsedSettings(parameters);
  unsetenv("XDG_CONFIG_HOME");
  const std::string options = "--mode smooth --selection-low 100 --origin 0.25,-0.125 --intensity ";
  EXPECT_NE(rendered("--last-used"), rendered(""));
  EXPECT_EQ(rendered("--last-used"), rendered(options + "0.33333333333333331"));
  EXPECT_EQ(rendered("--last-used --intensity 0.1"), rendered(options + "0.1"));
  EXPECT_EQ(run("--last-used --save-preset p.cfg:A").exitCode, 0);
  EXPECT_NE(contentOf(path("p.cfg")).find("-0.125000\nIntensity 0.333333\n"), std::string::npos);
}

// The program on a terminal of its own.
class OnTerminal {
 public:
  explicit OnTerminal(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), RADIASHAFTS_PROGRAM);
    process_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
    if (process_ != 0) return;
    std::vector<char*> pointers;
    for (std::string& argument : arguments) pointers.push_back(argument.data());
    pointers.push_back(nullptr);
    execv(RADIASHAFTS_PROGRAM, pointers.data());
    _exit(1);
  }
  ~OnTerminal() { close(terminal_); }
  OnTerminal(const OnTerminal&) = delete;
  OnTerminal& operator=(const OnTerminal&) = delete;

  // Reads on; false when the program has closed the terminal without saying the text.
  bool says(const std::string& text) {
    char byte = 0;
    while (said_.find(text) == std::string::npos) {
      if (read(terminal_, &byte, 1) != 1) return false;
      said_ += byte;
    }
    return true;
  }
  // The exit code, when the program has been asked to end.
  int endedBy(int signal) {
    kill(process_, signal);
    EXPECT_TRUE(says("radiashafts: interrupted\r\n")) << said_;
    int status = 0;
    waitpid(process_, &status, 0);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  int terminal_ = -1;
  pid_t process_ = -1;
  std::string said_;
};

TEST_F(CommandLine, ARequestToEndIsFollowedAnywhereAndLeavesNothingBehind) {
  ASSERT_EQ(mkfifo(path("pipe.png").c_str(), 0600), 0);
  fs::create_directory(path("results"));
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    SCOPED_TRACE(signal);
    OnTerminal reading({path("pipe.png"), path("results/out.png")});
    const int pipe = open(path("pipe.png").c_str(), O_WRONLY);  // returns when it is read
    EXPECT_EQ(reading.endedBy(signal), 128 + signal);
    close(pipe);
  }
  const std::vector<std::uint8_t> samples(6000U * 4000U * 3U, 90);
  const auto output = ImageOutput::create("x.bmp");
  ASSERT_TRUE(output->open(path("big.bmp").string(), ImageSpec(6000, 4000, 3, TypeDesc::UINT8)));
  ASSERT_TRUE(output->write_image(TypeDesc::UINT8, samples.data()) && output->close());
  OnTerminal rendering({path("big.bmp"), path("results/out.png"), "--selection-soften", "1.3"});
  EXPECT_TRUE(rendering.says("big.bmp ["));
  EXPECT_EQ(rendering.endedBy(SIGTERM), 128 + SIGTERM);
  OnTerminal writing({path("big.bmp"), path("results/out.png"), "--intensity", "0"});
  while (fs::is_empty(path("results"))) usleep(1000);
  EXPECT_EQ(writing.endedBy(SIGHUP), 128 + SIGHUP);
  EXPECT_TRUE(fs::is_empty(path("results")));
}

// From none at all to enough. Root gets any number, so another user asks.
TEST_F(CommandLine, FewThreadsGiveThePictureOrOneLine) {
  write<std::uint8_t>("in.tif", 4, TypeDesc::UINT8);
  ASSERT_EQ(run("in.tif in.exr --quiet").exitCode + run("in.exr usual.exr --quiet").exitCode, 0);
  // The limit is not for root; another user keeps root's way to the files.
  const std::string user = geteuid() != 0
                               ? ""
                               : "setpriv --reuid=65534 --clear-groups "
                                 "--inh-caps=+dac_override --ambient-caps=+dac_override ";
  int pictures = 0;
  for (int threads = 1; threads < 10; threads += 2) {
    const Answer answer =
        run("in.exr out.exr --quiet", user + "prlimit --nproc=" + std::to_string(threads));
    if (answer.exitCode == 0) {
      EXPECT_TRUE(contentOf(path("out.exr")) == contentOf(path("usual.exr"))) << threads;
      ++pictures;
    } else {
      EXPECT_EQ(answer.exitCode, 5) << threads;
      EXPECT_EQ(std::count(answer.err.begin(), answer.err.end(), '\n'), 1) << answer.err;
    }
    fs::remove(path("out.exr"));
  }
  EXPECT_TRUE(pictures > 0 || geteuid() != 0);  // a user's other processes count too
}

TEST_F(CommandLine, WritesManyFilesOfAnyNameIntoADirectoryAndRefusesToWriteOneTwice) {
  const std::string names[] = {"a.png", "b?c.png", std::string(251, 'n') + ".png", "d.png?e=1"};
  write<std::uint8_t>("a.png", 3, TypeDesc::UINT8);
  for (const std::string& name : names) {
    if (name != names[0]) fs::copy_file(path("a.png"), path(name));
  }
  for (const char* directory : {"results", "what?"}) {
    fs::create_directory(path(directory));
    const std::string to = std::string(" --quiet --output-dir '") + directory + "'";
    EXPECT_EQ(run("'" + names[0] + "' '" + names[1] + "' " + names[2] + to).exitCode, 0);
    for (int i = 0; i < 3; ++i) {
      EXPECT_EQ(contentOf(path(directory) / names[i]), contentOf(path("results/a.png"))) << i;
    }
    EXPECT_EQ(run("'" + names[3] + "' '" + directory + "/e.png' --quiet").exitCode, 0);
  }
  EXPECT_EQ(run("a.png ./a.png --output-dir results").exitCode, 2);
}

}  // namespace
}  // namespace radiashafts::test
