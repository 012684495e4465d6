// The trace in the user's file.

#include <algorithm>
#include <fstream>
#include <iterator>
#include <regex>
#include <sstream>

#include "interface/win32/dialog_ids.h"
#include "tests/dialogs/dialog_test.h"
#include "tests/dialogs/user_registry.h"

namespace radiashafts::test {
namespace {

// $NAME stands for the block of that name, $folder for the test's folder and # for an address.
// What workers say is not here: how many there are is the machine's own.
constexpr char confirmedRun[] = R"(
        $opening
        $firstRender
        pfPreviewWin32::DrawToPreview()
        pfParmeters::LoadSettings( strName(Bold), strPath($folder\p.cfg), pFilter(#) )
            pfParmeters::LoadSettings( return(1) )
        $names
            select setting: Bold
        $render
        pfPreviewWin32::DrawToPreview()
        pfFilter::RequestColor( pFilterRecord(0x#), fRed(1), fGreen(1), fBlue(1) )
            ColorServices result = 0
            source space = 0
            result space = 0
            pfFilter::RequestColor( return(1) fRed(0.2), fGreen(0), fBlue(1) )
        $render
        pfPreviewWin32::DrawToPreview()
        UIProcedure - WM_COMMAND OK pressed.
        UIProcedure - WM_INITDIALOG: PresetPath($folder\p.cfg)
        pfPreviewWin32::WriteLastUsedSettings()
        pfPreviewWin32::Show( return(1) )
    pfParmeters::WriteScriptParams( pFilterRecord(0x#) )
        pfParmeters::WriteScriptParams(' return(0) )
    pfFilter::SetupFilterRecord( pFilterRecord(0x#), nScaleFactor(1) )
        $record
    $render
    pfFilter::DoStartSelector( return(0) )
pfFilter::DoFinishSelector( pFilterRecord(0x#) )
)";

constexpr char cancelledRun[] = R"(
pfFilter::DoParametersSelector( pFilterRecord(0x#) )
    pfFilter::DoParametersSelector( return(0) )
pfFilter::DoPrepareSelector( pFilterRecord(0x#) )
pfFilter::DoStartSelector( pFilterRecord(0x#) )
    pfParmeters::ReadScriptParams( pFilterRecord(0x#) )
        pfParmeters::ReadScriptParams( return(1) )
    pfPreviewWin32::Show( pFilter(0x#), pFilterRecord(0x#) )
        $opening
        $render
        pfPreviewWin32::DrawToPreview()
        UIProcedure - WM_COMMAND CANCEL pressed.
        UIProcedure - WM_INITDIALOG: PresetPath($folder\p.cfg)
        pfPreviewWin32::Show( return(0) )
    pfParmeters::WriteScriptParams( pFilterRecord(0x#) )
        pfParmeters::WriteScriptParams(' return(0) )
    pfFilter::DoStartSelector( return(-128) )
ThreadPool::~ThreadPool()
ThreadPool::free ()
)";

constexpr struct {
  const char* name;
  const char* lines;
} blocks[] = {{"$opening", R"(
writing to Logfile at: $folder\log.txt
UIProcedure - WM_INITDIALOG: PresetPath($folder\p.cfg)
pfPreviewWin32::ReadLastUsedSettings()
pfPreviewWin32::AssignScaleFactor( nFactor(1) )
    pfFilter::SetupFilterRecord( pFilterRecord(0x#), nScaleFactor(1) )
        $record
    pfPreviewWin32::AssignScaleFactor( return(0) )
$names
Updated Settings List
Updated Undo Buttons
windows up
pfPreviewWin32::AssignScaleFactor( nFactor(1) )
    pfPreviewWin32::AssignScaleFactor( return(0) )
assigned scale factor
pre show done. Going into message loop
)"},
              {"$names", R"(
pfPreviewWin32::UpdateSettingsList()
    pfParmeters::GetSettingNames( strPath($folder\p.cfg), lstNames(), strFilterName(Radiashafts) )
        pfParmeters::IsSettingFileValid( strPath($folder\p.cfg), strFilterName(Radiashafts) )
            pfParmeters::IsSettingFileValid( return(1) )
        pfParmeters::GetSettingNames( return(1) )
    m_hInterface(0x#)
    enabled delete
    enabled save and combo
    about to add string: soft
    about to add string: Bold
)"},
              {"$render", R"(
SelectRenderTemplate()
    ThreadPool::init ()
    ThreadPool::iterate (iterations(64))
        all threads finished
    ThreadPool::init ()
    ThreadPool::iterate (iterations(BANDS))
        all threads finished
)"},
              {"$firstRender", R"(
SelectRenderTemplate()
    ThreadPool::init ()
        threads sucesfully initiated
    ThreadPool::iterate (iterations(64))
        all threads finished
    ThreadPool::init ()
    ThreadPool::iterate (iterations(BANDS))
        all threads finished
)"},
              {"$record", R"(
pFilterRecord:
    imageMode(3)
    filterCase(1)
    planes(3)
    depth(8)
    inData(0x#)
    inRowBytes(288)
    inLayerPlanes(0)
    inTransparencyMask(0)
    inLayerMasks(0)
    inInvertedLayerMasks(0)
    inNonLayerPlanes(3)
    outData(0x#)
    outRowBytes(288)
    outLayerPlanes(0)
    outTransparencyMask(0)
    outLayerMasks(0)
    outInvertedLayerMasks(0)
    outNonLayerPlanes(3)
    maskData(0x0)
    maskRowBytes(0)
    haveMask(0)
    isFloating(0)
    autoMask(1)
    imageSize.h(96)
    imageSize.v(64)
    wholeSize.h(96)
    wholeSize.v(64)
    inRect: left(0), right(96), top(0), bottom(64)
    outRect: left(0), right(96), top(0), bottom(64)
    maskRect: left(0), right(0), top(0), bottom(0)
    filterRect: left(0), right(96), top(0), bottom(64)
)"}};

using Lines = std::vector<std::string>;

Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string replaced(const std::string& text, const char* pattern, const std::string& with) {
  return std::regex_replace(text, std::regex(pattern), with);
}

// The pattern's lines from its second on, with blocks in their places.
void append(Lines& log, const char* pattern, const std::string& indent = "") {
  for (const std::string& line : linesOf(pattern + 1)) {
    const std::size_t text = line.find_first_not_of(' ');
    const auto* block = std::find_if(std::begin(blocks), std::end(blocks),
                                     [&](const auto& b) { return line.substr(text) == b.name; });
    if (block != std::end(blocks)) {
      append(log, block->lines, indent + line.substr(0, text));
    } else {
      log.push_back(indent + replaced(line, R"(\$folder)", workFolder().string()));
    }
  }
}

// Empty where they are the same.
std::string firstDifference(const Lines& actual, const Lines& expected) {
  for (std::size_t i = 0; i < std::max(actual.size(), expected.size()); ++i) {
    const std::string is = i < actual.size() ? actual[i] : "the end";
    const std::string shouldBe = i < expected.size() ? expected[i] : "the end";
    if (is != shouldBe) return "line " + std::to_string(i) + ": " + is + "\nand not: " + shouldBe;
  }
  return "";
}

class Log : public DialogTest {
 protected:
  void SetUp() override {
    DialogTest::SetUp();
    storeValue("logfile", textValue(path("log.txt")));
    input_ = writePicture("in.png", placesPicture(96, 64));
  }

  static std::string log() {
    std::ifstream stream(path("log.txt"));
    std::string text(std::istreambuf_iterator<char>(stream), {});
    std::erase(text, '\r');
    return text;
  }

  static Lines comparableLog() {
    std::string text = replaced(log(), "0x0x[0-9a-f]+", "0x#");
    text = replaced(text, "pFilter\\(0x[0-9a-f]+", "pFilter(#");
    text = replaced(text, " *(thread \\d+ started|waiting for thread \\d+ to finish.*)\n", "");
    // The last pass has a band for each thread.
    return linesOf(replaced(text, R"((iterations\(64[^]*?iterations\()\d+)", "$1BANDS"));
  }

  static bool previewIsDrawn(int times) {
    return eventually([times] {
      const Lines lines = linesOf(log());
      return std::count(lines.begin(), lines.end(), "        pfPreviewWin32::DrawToPreview()") ==
             times;
    });
  }

  std::string input_;
};

TEST_F(Log, TellsTheWholeRunAndTheNextOneBehindIt) {
  std::ofstream(path("log.txt")) << "of another process\n";
  std::ofstream(path("p.cfg")) << "FileOwner Radiashafts\nname soft\nname Bold\nIntensity 1\n";
  storeValue("Preset Path", textValue(path("p.cfg")));
  std::filesystem::create_directory(path("out"));
  HostProgram host({"--dialog", "--mode", "smooth", "--picked-color", "51,0,255", input_,
                    writePicture("in2.png", placesPicture(96, 64)), "--output-dir", path("out")});
  const DialogDriver dialogs(host.id());
  ASSERT_TRUE(dialogs.isOpen()) << host.messages();
  EXPECT_TRUE(previewIsDrawn(1));
  dialogs.chooseEntry(ID_PRESETS, 0);
  EXPECT_TRUE(previewIsDrawn(2));
  dialogs.clickOn(1036);
  EXPECT_TRUE(previewIsDrawn(3));
  dialogs.clickOn(IDOK);
  EXPECT_TRUE(eventually([&] { return dialogs.isClosed(); }));
  const DialogDriver next(host.id());
  ASSERT_TRUE(next.isOpen()) << host.messages();
  EXPECT_TRUE(previewIsDrawn(4));
  next.clickOn(IDCANCEL);
  EXPECT_EQ(host.exitCode(), 5);
  Lines expected{"of another process"};
  append(expected, confirmedRun);
  append(expected, cancelledRun);
  EXPECT_EQ(firstDifference(comparableLog(), expected), "");
}

TEST_F(Log, ThatCannotBeWrittenIsBorneInSilence) {
  storeValue("logfile", textValue(path("missing\\log.txt")));
  HostProgram host({"--dialog", input_, path("out.png")});
  const DialogDriver dialogs(host.id());
  ASSERT_TRUE(dialogs.isOpen()) << host.messages();
  dialogs.clickOn(IDOK);
  EXPECT_EQ(host.exitCode(), 0);
  EXPECT_EQ(host.messages(), "");
  EXPECT_FALSE(std::filesystem::exists(path("missing")));
}

}  // namespace
}  // namespace radiashafts::test
