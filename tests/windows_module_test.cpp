// The built Windows module: its file, read byte by byte, and its coming and going in a process.

#include <windows.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "standin/system/module.h"
#include "tests/support/module_under_test.h"
#include "tests/support/process_usage.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

using Bytes = std::vector<std::uint8_t>;

// A portable executable, read from its file.
class ModuleFile {
 public:
  explicit ModuleFile(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    bytes_.assign(std::istreambuf_iterator<char>(stream), {});
    header_ = at<std::uint32_t>(0x3C);
  }

  std::uint16_t machine() const { return at<std::uint16_t>(header_ + 4); }
  bool isLibrary() const { return (at<std::uint16_t>(header_ + 22) & 0x2000) != 0; }

  std::set<std::string> exports() const {
    const std::uint32_t table = offsetOf(directory(0));
    const auto count = at<std::uint32_t>(table + 24);
    const std::uint32_t names = offsetOf(at<std::uint32_t>(table + 32));
    std::set<std::string> result;
    for (std::uint32_t i = 0; i < count; ++i) {
      result.insert(textAt(offsetOf(at<std::uint32_t>(names + 4 * i))));
    }
    return result;
  }

  std::set<std::string> importedLibraries() const {
    std::set<std::string> result;
    for (std::uint32_t entry = offsetOf(directory(1)); at<std::uint32_t>(entry + 12) != 0;
         entry += 20) {
      result.insert(textAt(offsetOf(at<std::uint32_t>(entry + 12))));
    }
    return result;
  }

  struct Resource {
    std::uint32_t language;
    Bytes data;
  };
  // By "TYPE/id"; the system's own types by number.
  std::map<std::string, Resource> resources() const {
    std::map<std::string, Resource> result;
    const std::uint32_t root = offsetOf(directory(2));
    for (const auto& [type, typeFolder] : folder(root, root)) {
      for (const auto& [id, idFolder] : folder(root, typeFolder)) {
        for (const auto& [language, leaf] : folder(root, idFolder)) {
          const std::uint32_t data = offsetOf(at<std::uint32_t>(leaf));
          result[type + "/" + id] = {
              static_cast<std::uint32_t>(std::stoul(language)),
              Bytes(&bytes_[data], &bytes_[data] + at<std::uint32_t>(leaf + 4))};
        }
      }
    }
    return result;
  }

 private:
  template <class Value>
  Value at(std::uint32_t offset) const {
    Value value;
    std::memcpy(&value, &bytes_.at(offset), sizeof value);
    return value;
  }
  std::string textAt(std::uint32_t offset) const {
    return reinterpret_cast<const char*>(&bytes_.at(offset));
  }
  std::uint32_t directory(std::uint32_t index) const {
    return at<std::uint32_t>(header_ + 24 + 112 + 8 * index);
  }
  // Where the file holds what is mapped at the address.
  std::uint32_t offsetOf(std::uint32_t address) const {
    const auto sections = at<std::uint16_t>(header_ + 6);
    std::uint32_t section = header_ + 24 + at<std::uint16_t>(header_ + 20);
    for (int i = 0; i < sections; ++i, section += 40) {
      const auto start = at<std::uint32_t>(section + 12);
      if (address >= start && address < start + at<std::uint32_t>(section + 16)) {
        return address - start + at<std::uint32_t>(section + 20);
      }
    }
    throw std::out_of_range("address outside the sections");
  }
  std::vector<std::pair<std::string, std::uint32_t>> folder(std::uint32_t root,
                                                            std::uint32_t offset) const {
    std::vector<std::pair<std::string, std::uint32_t>> entries;
    const int count = at<std::uint16_t>(offset + 12) + at<std::uint16_t>(offset + 14);
    for (int i = 0; i < count; ++i) {
      const auto name = at<std::uint32_t>(offset + 16 + 8 * i);
      const auto place = at<std::uint32_t>(offset + 20 + 8 * i);
      std::string key = std::to_string(name);
      if ((name & 0x80000000) != 0) {
        const std::uint32_t text = root + (name & 0x7FFFFFFF);
        key.clear();
        for (int c = 0; c < at<std::uint16_t>(text); ++c) {
          key += static_cast<char>(at<std::uint16_t>(text + 2 + 2 * c));
        }
      }
      entries.emplace_back(key, root + (place & 0x7FFFFFFF));
    }
    return entries;
  }

  Bytes bytes_;
  std::uint32_t header_ = 0;
};

Bytes hex(const std::string& digits) {
  Bytes bytes;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2) {
    bytes.push_back(static_cast<std::uint8_t>(std::stoul(digits.substr(i, 2), nullptr, 16)));
  }
  return bytes;
}

Bytes text(const std::string& characters, std::size_t zeros = 0) {
  Bytes bytes(characters.begin(), characters.end());
  bytes.insert(bytes.end(), zeros, 0);
  return bytes;
}

Bytes operator+(Bytes a, const Bytes& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

const ModuleFile& moduleFile() {
  static const ModuleFile file(RADIASHAFTS_MODULE_PATH);
  return file;
}

TEST(WindowsModule, ExportsItsEntryAloneAndNeedsOnlyTheSystem) {
  EXPECT_EQ(moduleFile().machine(), 0x8664);
  EXPECT_TRUE(moduleFile().isLibrary());
  EXPECT_EQ(moduleFile().exports(), std::set<std::string>{"ENTRYPOINT"});
  const std::set<std::string> ofTheSystem{"KERNEL32.dll", "msvcrt.dll",   "USER32.dll",
                                          "GDI32.dll",    "ADVAPI32.dll", "comdlg32.dll",
                                          "COMCTL32.dll"};
  for (const std::string& library : moduleFile().importedLibraries()) {
    EXPECT_TRUE(ofTheSystem.contains(library)) << library;
  }
}

TEST(WindowsModule, CarriesItsPropertyList) {
  const auto resource = moduleFile().resources().at("PIPL/16000");
  struct {
    const char* key;
    Bytes data;
  } const properties[] = {
      {"kind", text("MFB8")},
      {"name", text("\x0ERadiashafts...", 1)},
      {"catg", text("\x0AHalvorsund", 1)},
      {"vers", hex("02000100")},
      {"8664", text("ENTRYPOINT", 2)},
      {"flly", hex("80000000")},
      {"mode", hex("50000000")},
      {"hstm",
       hex("00000000") + text("70CHllun") + hex("803e") + text("Halvorsund Radiashafts", 4)},
      {"enbl", text("in (PSHOP_ImageMode, GrayScaleMode, RGBMode, Gray16Mode, RGB48Mode, "
                    "Gray32Mode, RGB96Mode)",
                    2)},
      {"fici", hex("01010b0001010b0001010b0001010b0001010b0000000b0000000b00")},
  };
  Bytes expected = hex("0100000000000a000000");
  for (const auto& property : properties) {
    const std::string key(property.key);
    const auto size = static_cast<std::uint8_t>(property.data.size());
    expected = expected + text("MIB8") + text(std::string(key.rbegin(), key.rend()), 4) +
               Bytes{size, 0, 0, 0} + property.data;
  }
  EXPECT_EQ(expected.size(), 386U);
  EXPECT_EQ(resource.data, expected);
}

TEST(WindowsModule, CarriesItsTerminology) {
  const auto resource = moduleFile().resources().at("AETE/16000");
  EXPECT_EQ(resource.language, 1033U);
  const auto counted = [](const std::string& s) {
    return Bytes{static_cast<std::uint8_t>(s.size())} + text(s);
  };
  struct {
    const char* name;
    const char* key;
    const char* type;
    const char* description;
  } const parameters[] = {
      {"origin x", "XIRO", "buod", "1.0 is rightmost pixel"},
      {"origin y", "YIRO", "buod", "1.0 is lowest pixel"},
      {"intensity", "ETNI", "buod", "image multiplier"},
      {"ray length", "ELAR", "buod", "ray length"},
      {"radius", "IDAR", "buod", "effect radius"},
      {"color balance", "ABOC", "buod", "color bias"},
      {"low color red", "RLOC", "buod", "low intensity color"},
      {"low color green", "GLOC", "buod", "low intensity color"},
      {"low color blue", "BLOC", "buod", "low intensity color"},
      {"high color red", "RHOC", "buod", "high intensity color"},
      {"high color green", "GHOC", "buod", "high intensity color"},
      {"high color blue", "BHOC", "buod", "high intensity color"},
      {"use image colors", "OCMI", "loob", "use image colors"},
      {"gamma correction", "AMAG", "buod", "takes effect before blending"},
      {"contrast", "TNOC", "buod", "takes effect before blending"},
      {"hue", "HLSH", "buod", "takes effect before blending"},
      {"saturation", "SLSH", "buod", "takes effect before blending"},
      {"lightness", "LLSH", "buod", "takes effect before blending"},
      {"selection low", "LLES", "buod", "lower grayscale selection"},
      {"selection high", "HLES", "buod", "upper grayscale selection"},
      {"selection soften", "SLES", "buod", "Selection Soften based on Climax"},
      {"selection climax", "CLES", "buod", "Peak intensity when softened"},
      {"mode", "EDOM", "gnol", "radiashafts mode"},
      {"blend mode", "DNLB", "gnol", "transfer mode"},
      {"show mode", "WOHS", "gnol", "what to see"},
  };
  Bytes expected = hex("01000100000000000100") + counted("Halvorsund") + counted("Skein package") +
                   text("70SH") + hex("010001000100") + counted("Radiashafts") +
                   counted("no comment") + text("70CHllunllun") + hex("000000") + text("RmI#") +
                   hex("0000b01900");
  for (const auto& p : parameters) {
    expected = expected + counted(p.name) + text(p.key) + text(p.type) + counted(p.description) +
               hex("0000");
  }
  expected = expected + hex("000000000000");
  EXPECT_EQ(expected.size(), 1196U);
  EXPECT_EQ(resource.data, expected);
}

TEST(WindowsModule, TellsItsVersion) {
  const Bytes data = moduleFile().resources().at("16/1").data;
  const Bytes fixed = hex("bd04effe00000100") + hex("0200010000000200") + hex("0200010000000200");
  EXPECT_NE(std::search(data.begin(), data.end(), fixed.begin(), fixed.end()), data.end());
}

// A filter that draws a part of a picture in place of filtering, into a bitmap of its own.
COLORREF drawnPixels[2];
void drawingFilter(std::int16_t selector, void* block, std::intptr_t*, std::int16_t* result) {
  if (selector != hostapi::selectorStart) return;
  auto* record = static_cast<hostapi::FilterRecord*>(block);
  record->outRect = {};
  const std::uint8_t planar[] = {10, 11, 20, 21, 30, 31,
                                 40, 41, 50, 51, 60, 61};  // 2 x 2, by plane
  hostapi::PSPixelMap map{};
  map.bounds = {0, 0, 2, 2};
  map.imageMode = hostapi::modeRGB;
  map.rowBytes = 2;
  map.colBytes = 1;
  map.planeBytes = 4;
  map.baseAddr = const_cast<std::uint8_t*>(planar);
  const hostapi::VRect lowerRow{1, 0, 2, 2};

  const HDC screen = GetDC(nullptr);
  const HDC context = CreateCompatibleDC(screen);
  BITMAPINFO info{};
  info.bmiHeader = {sizeof info.bmiHeader, 8, -8, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
  void* bits = nullptr;
  const HBITMAP bitmap = CreateDIBSection(context, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
  const HGDIOBJ previous = SelectObject(context, bitmap);
  *result = record->displayPixels(&map, &lowerRow, 3, 5, context);
  drawnPixels[0] = GetPixel(context, 5, 3);
  drawnPixels[1] = GetPixel(context, 6, 3);
  if (record->displayPixels(&map, &lowerRow, 0, 0, nullptr) == 0) *result = 1;
  DeleteObject(SelectObject(context, previous));
  DeleteDC(context);
  ReleaseDC(nullptr, screen);
}

TEST(StandInHost, DrawsPlanarPixelsWhereItIsAsked) {
  Random random(5);
  const standin::Picture input = randomPicture(random, 18, 5, 4);
  standin::StandInHost host(input, nullptr);
  standin::Picture output;
  EXPECT_EQ(host.run(drawingFilter, {}, output).status, 0);
  EXPECT_EQ(drawnPixels[0], RGB(20, 40, 60));
  EXPECT_EQ(drawnPixels[1], RGB(21, 41, 61));
}

void loadRunUnload() {
  standin::Module module;
  ASSERT_TRUE(module.load(RADIASHAFTS_MODULE_PATH)) << module.error();
  const auto entry = reinterpret_cast<standin::EntryPoint>(module.symbol("ENTRYPOINT"));
  Random random(5);
  const standin::Picture input = randomPicture(random, 18, 50, 40);
  standin::StandInHost host(input, nullptr);
  standin::Picture output;
  ASSERT_EQ(host.run(entry, {}, output).status, 0);
}

// The system lets go of idle threads in its own time.
ProcessUsage usageAtRest(int threads) {
  ProcessUsage usage = processUsage();
  for (int wait = 0; wait < 600 && usage.threads > threads; ++wait) {
    Sleep(100);
    usage = processUsage();
  }
  return usage;
}

TEST(WindowsModule, ComesAndGoesAHundredTimesAndLeavesNothing) {
  for (int i = 0; i < 10; ++i) loadRunUnload();
  EXPECT_EQ(GetModuleHandleA("radiashafts.dll"), nullptr) << "still loaded";
  const ProcessUsage before = usageAtRest(1);
  for (int i = 0; i < 100; ++i) loadRunUnload();
  const ProcessUsage after = usageAtRest(before.threads);
  EXPECT_LE(after.threads, before.threads);
  EXPECT_LE(after.handles, before.handles);
  EXPECT_LE(after.memory, before.memory + (std::size_t{256} << 10));
}

// The workers are gone by the time the module hears of the end, and nobody waits for them.
TEST(WindowsModuleDeathTest, AProcessEndsWithTheModuleLoaded) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  EXPECT_EXIT(
      {
        Random random(5);
        const standin::Picture input = randomPicture(random, 18, 50, 40);
        const bool rendered = runModule(input, nullptr, {}).result.status == 0;
        std::exit(rendered ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
  EXPECT_EXIT(
      {
        auto* module = new standin::Module;
        module->load(RADIASHAFTS_MODULE_PATH);
        Random random(5);
        const standin::Picture input = randomPicture(random, 18, 50, 40);
        standin::StandInHost host(input, nullptr);
        standin::Picture output;
        const auto entry = reinterpret_cast<standin::EntryPoint>(module->symbol("ENTRYPOINT"));
        ExitProcess(host.run(entry, {}, output).status == 0 ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace radiashafts::test
