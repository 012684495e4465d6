// The preview: its steps of zoom, where things are in its frame, its pixels, and its renders.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <functional>
#include <random>

#include <gtest/gtest.h>

#include "frame/pf_filter_radiashafts.h"
#include "interface/model/host_drawing.h"
#include "interface/model/preview_pixels.h"
#include "interface/model/preview_pointer.h"
#include "interface/model/preview_view.h"
#include "interface/model/window_layout.h"
#include "platform/tick.h"
#include "tests/support/fake_interface.h"
#include "tests/support/long_test.h"

namespace radiashafts::test {
namespace {

// From least to most, each as likely.
struct Dice {
  int operator()(int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random);
  }
  std::mt19937 random{testSeed(20)};
};

TEST(ViewScale, ADraftShowsThePictureAtTheSizeThatItsPercentageTells) {
  const std::pair<int, const char*> steps[] = {{-13, "1000%"}, {-2, "266.7%"}, {-1, "200%"},
                                               {0, "133.3%"},  {1, "100%"},    {2, "50%"},
                                               {3, "33.33%"},  {1000, "0.1%"}};
  for (const auto& [factor, text] : steps) {
    for (int draft = 0; draft < 9; ++draft) {
      const ViewScale scale{factor, draft};
      EXPECT_EQ(scale.percentage(), text);
      const double shown = 100.0 / (scale.renderFactor() * scale.viewScale());
      EXPECT_NEAR(shown / std::stod(text), 1.0, 4e-4) << factor << ' ' << draft;
      EXPECT_EQ(scale.renderFactor(), std::max(factor, 1) + draft);
    }
  }
}

// Any view that scrolling and zooming can lead to.
PreviewGeometry anyView(Dice& dice) {
  const ViewScale scale{dice(-6, 5), dice(0, 3)};
  PreviewGeometry view;
  view.frame = {dice(1, 700), dice(1, 700)};
  view.image = {dice(1, 2000) / scale.renderFactor() + 1, dice(1, 2000) / scale.renderFactor() + 1};
  view.viewScale = scale.viewScale();
  view.pan = {dice(-100, 2500), dice(-100, 2500)};
  view.limitPan();
  return view;
}

// The display's size is rounded for the pointer and truncated for the handle, and places are
// truncated on both ways.
TEST(PreviewGeometry, ShowsAPartOfThePictureInTheMiddleAndPointerHandleAndPixelAgree) {
  Dice dice;
  for (int i = 0; i < 20000; ++i) {
    SCOPED_TRACE(i);
    const PreviewGeometry view = anyView(dice);
    const Box from = view.source(view.image), to = view.destination();
    ASSERT_TRUE(from.left >= 0 && from.right <= view.image.width);
    ASSERT_TRUE(from.top >= 0 && from.bottom <= view.image.height);
    ASSERT_LE(std::abs(to.left - (view.frame.width - to.right)), 1);
    ASSERT_LE(std::abs(to.top - (view.frame.height - to.bottom)), 1);
    // It is scrolled only along a side that the frame does not hold.
    ASSERT_TRUE(view.pan.x == 0 || to.width() == view.frame.width);
    ASSERT_TRUE(view.pan.y == 0 || to.height() == view.frame.height);
    const Point p{dice(0, view.frame.width - 1), dice(0, view.frame.height - 1)};
    const auto holds = [p](const Box& box) {
      return p.x >= box.left && p.x < box.right && p.y >= box.top && p.y < box.bottom;
    };
    const auto margins = view.margins();
    ASSERT_NE(holds(to), std::any_of(margins.begin(), margins.end(), holds));
    if (!holds(to)) continue;
    const auto [x, y] = view.clientToImage(p, {-9.0, -9.0});
    const Point handle = view.handle(x, y);
    ASSERT_LE(std::max(std::abs(handle.x - p.x), std::abs(handle.y - p.y)), 2);
    const double column = from.left + (p.x - to.left + 0.5) * from.width() / to.width();
    const double row = from.top + (to.bottom - p.y - 0.5) * from.height() / to.height();
    const double pixels = 1.0 + 2.0 * view.viewScale;
    ASSERT_NEAR(x * view.image.width, column, pixels);
    ASSERT_NEAR(y * view.image.height, view.image.height - row, pixels);
  }
  // Along a side that nothing is shown of the position stays, and no number is a place.
  EXPECT_EQ((PreviewGeometry{{9, 9}, {}, 1.0, {}}.clientToImage({3, 4}, {0.25, 7.0})),
            (std::array{0.25, 7.0}));
  EXPECT_EQ((PreviewGeometry{{100, 100}, {50, 20}, 1.0, {}}.handle(std::nan(""), 1e300).x), 0);
}

TEST(WorkArea, HoldsTheWholeWindowWhichMovesAndShrinksNoMoreThanItMust) {
  const Box area{-100, 40, 900, 700};
  EXPECT_EQ(movedInto(area, {0, 50, 200, 300}), (Box{0, 50, 200, 300}));
  EXPECT_EQ(movedInto(area, {-300, 0, -100, 100}), (Box{-100, 40, 100, 140}));
  EXPECT_EQ(movedInto(area, {850, 650, 950, 750}), (Box{800, 600, 900, 700}));
  EXPECT_EQ(movedInto(area, {0, -94, 1500, 998}), area);
}

// With a task bar at the top left of a second monitor.
TEST(WindowLayout, PlacesAreTheScreensTextsFitAndControlsFollowTheScaling) {
  const Box monitor{-800, 100, 0, 700}, work{-740, 130, 0, 700}, shown{-740, 130, 0, 700};
  EXPECT_EQ(placeOnScreen({-700, 150, -300, 450}, shown, monitor, work),
            (Box{-640, 180, -240, 480}));
  EXPECT_EQ(placeOnScreen(shown, shown, monitor, work), shown);

  const auto fitting = [](int limit) {
    return fittingHeight(16, [limit](int height) { return height <= limit; });
  };
  EXPECT_EQ(fitting(20), 16);
  EXPECT_EQ(fitting(12), 12);
  EXPECT_EQ(fitting(11), std::nullopt);

  EXPECT_EQ(scaled({10, -8, 110, 12}, {300, 600}, {450, 1200}), (Box{15, -16, 165, 24}));
}

// Two pixels under two cells of the checkerboard: the samples of all planes, of 0 to 1 and 1 for
// all that are missing, and the bytes that a host is given.
TEST(PreviewPixels, AreThePicturesOverACheckerboard) {
  const struct {
    int mode;
    std::int16_t layer, mask, other, planes;
    int depth;
    std::vector<double> samples;
    std::vector<int> bytes;  // none where nothing is drawn
    int clipped = 0;
  } cases[] = {
      {10, 1, 1, 0, 2, 8, {0.6, 0.2, 0.6, 0.8}, {197, 197, 197, 173, 173, 173}},
      {17, 3, 0, 0, 4, 16, {0.4, 0, 0, 0, 0.6}, {101, 101, 101, 153, 153, 153}},
      {3, 3, 1, 0, 4, 8, {0.2, 0.4, 0.6, 0.0, 0.2, 0.4, 1, 0}, {208, 208, 208, 255, 255, 255}},
      {3, 3, 1, 0, 4, 32, {0.2, 0.4, 1.6, 0.5, -9, 0.4, 0.6}, {129, 155, 231, 0, 102, 153}, 1},
      // no room for the mask
      {16, 3, 1, 0, 3, 32, {0.2, 0.4, 1.6, NAN, 0.4, 0.6}, {51, 102, 255, 0, 102, 153}, 1},
      {16, 0, 0, 4, 5, 8, {0.2, 0.4, 0.6, 0, 0, 0.8}, {51, 102, 153, 204, 255, 255}, 1},
      {7, 2, 0, 0, 2, 16, {0.2, 0.4}, {102, 51, 0, 255, 255, 0}, 1},
      {18, 3, 1, 0, 4, 8, {}, {}}};
  for (const auto& c : cases) {
    SCOPED_TRACE(testing::Message()
                 << "mode " << c.mode << " depth " << c.depth << ' ' << c.planes);
    hostapi::FilterRecord r{};
    r.imageMode = static_cast<std::int16_t>(c.mode);
    r.depth = c.depth;
    r.planes = c.planes;
    r.inLayerPlanes = c.layer;
    r.inTransparencyMask = c.mask;
    r.inNonLayerPlanes = c.other;
    r.imageSize = {16, 32};
    r.outRect = {0, 0, 1, 2};
    std::vector<std::uint8_t> row(static_cast<std::size_t>(2 * c.planes * 4));
    for (std::size_t i = 0; i < static_cast<std::size_t>(2 * c.planes); ++i) {
      const double value = i < c.samples.size() ? c.samples[i] : 1.0;
      const auto number = static_cast<float>(value);
      const auto word = static_cast<std::uint16_t>(c.depth == 16 ? value * 32768 : 0);
      if (c.depth == 8) row[i] = static_cast<std::uint8_t>(std::lround(value * 255));
      if (c.depth == 16) std::memcpy(&row[i * 2], &word, 2);
      if (c.depth == 32) std::memcpy(&row[i * 4], &number, 4);
    }
    r.outData = row.data();
    const int width = bitmapWidthFor(2);
    std::vector<std::uint8_t> host(static_cast<std::size_t>(width * 3), 165), system = host;
    const auto counts = drawToPreview(r, BitmapOrder::forHost, width, host.data());
    const bool drawn = counts.has_value();
    EXPECT_EQ(drawn, !c.bytes.empty());
    EXPECT_EQ(counts.value_or(DrawnPixels{}).clipped, c.clipped);
    EXPECT_EQ(drawToPreview(r, BitmapOrder::forSystem, width, system.data()).has_value(), drawn);
    EXPECT_EQ(host[6], 165);
    const bool turned = c.layer != 2;  // two channels are shown the same to both
    for (std::size_t i = 0; i < c.bytes.size(); ++i) {
      EXPECT_NEAR(host[i], c.bytes[i], 1) << i;
      EXPECT_EQ(system[turned ? i / 3 * 3 + 2 - i % 3 : i], host[i]) << i;
    }
  }
}

TEST(PreviewPixels, WithALargestSampleAreCountedInRowsOfEveryLength) {
  for (const int width : {1, 17, 50, 5000}) {
    hostapi::FilterRecord r{};
    r.imageMode = hostapi::modeRGB;
    r.planes = 3;
    r.outRect = {0, 0, 1, static_cast<std::int16_t>(width)};
    std::vector<std::uint8_t> row(static_cast<std::size_t>(width) * 3), bitmap(row.size());
    r.outData = row.data();
    for (const std::size_t every : {1, 7}) {  // this sample is a largest one
      for (std::size_t i = 0; i < row.size(); ++i) row[i] = i % every == 0 ? 255 : 254;
      const auto drawn = drawToPreview(r, BitmapOrder::forHost, width, bitmap.data());
      EXPECT_EQ(drawn->clipped, every == 1 ? width : (width * 3 + 6) / 7);
    }
  }
}

using Pixel = std::array<int, 3>;

// Whether the sample passes as right when each pixel is drawn as another one.
bool passes(const std::function<Pixel(Pixel)>& drawn) {
  const std::vector<std::uint8_t> sample = drawingSample();
  std::vector<std::uint8_t> bitmap(sample.size());
  constexpr int pixels = sampleWidth * sampleHeight;
  for (int i = 0; i < pixels; ++i) {  // rows from the bottom, blue first
    const auto* p = &sample[static_cast<std::size_t>(i) * 3];
    const Pixel seen = drawn({p[0], p[1], p[2]});
    const int row = sampleHeight - 1 - i / sampleWidth;
    for (int c = 0; c < 3; ++c) {
      bitmap[static_cast<std::size_t>(row * sampleWidth + i % sampleWidth) * 3 + 2 - c] =
          static_cast<std::uint8_t>(seen[c]);
    }
  }
  return showsSample(bitmap.data());
}

TEST(HostDrawing, OfAnotherShadeIsRightAndOfOtherChannelsOrShadesIsWrong) {
  EXPECT_TRUE(passes([](Pixel p) { return p; }));
  EXPECT_TRUE(passes([](Pixel p) {  // dull inks on warm paper
    const int mean = (p[0] + p[1] + p[2]) / 3;
    return Pixel{30 + (p[0] + mean) * 2 / 5, 25 + (p[1] + mean) * 2 / 5, 15 + (p[2] + mean) / 3};
  }));
  for (const Pixel& from : {Pixel{0, 2, 1}, {1, 0, 2}, {2, 1, 0}, {1, 2, 0}, {2, 0, 1}, {}}) {
    EXPECT_FALSE(passes([&](Pixel p) {
      return Pixel{p.at(from[0]), p.at(from[1]), p.at(from[2])};
    }));
  }
  // A grey as dark as black, as bright as white, and with a colour.
  for (const Pixel& grey : {Pixel{0, 0, 0}, {255, 255, 255}, {200, 128, 60}}) {
    EXPECT_FALSE(passes([&](Pixel p) { return p[0] == 128 ? grey : p; }));
  }
}

// A view of a picture of 400 x 300 as the message loop keeps it.
struct Session {
  explicit Session(const std::string& renders = "", Extent frame = {500, 400}) : filter(renders) {
    windows.frame = frame;
    windows.paint = [this] { view.limitPan(); };
    filter.zoomOut = [this] { view.ZoomBy(1); };
    bRenderPending = false;
    view.open(&filter, &filter.record);
    view.FitScaleToFrame();
  }
  ~Session() {
    view.close();
    bRenderPending = false;
    EXPECT_EQ(filter.live, 0);
    EXPECT_EQ(nRenderStartTick, 0U);
  }
  std::string play() {
    while (view.needsRender()) view.RenderUntilFinal();
    return filter.takeLog();
  }
  FakeFilter filter;
  FakeWindows windows;
  PreviewView view{windows};
  ParameterEditing editing{windows, view};
  PreviewPointer pointer{windows, view, editing};
};

TEST(PreviewRenders, AChangeThatCutsOneShortIsFollowedByADraftAndThenByFullQuality) {
  const std::pair<const char*, const char*> cases[] = {{".", "S1 R0 "},
                                                       {"p", "S1 R0 R0 "},
                                                       {"xx", "S1 R0 S2 R1 S3 R2 S1 R0 "},
                                                       {"x.x", "S1 R0 S2 R1 S1 R0 S2 R1 S1 R0 "},
                                                       {"-", "S1 R0 S2 R0 "},
                                                       {"x-", "S1 R0 S2 R1 S3 R1 S2 R0 "},
                                                       {"e", "S1 R0 "},
                                                       {"m", "S1 R0 "}};
  for (const auto& [renders, log] : cases) {
    SCOPED_TRACE(renders);
    Session s(renders);
    EXPECT_EQ(s.play(), log);
    EXPECT_EQ(s.view.shownBitmap() != nullptr, std::strpbrk(renders, "em") == nullptr);
    EXPECT_FALSE(s.view.needsRender());
    s.view.RequestRender();
    EXPECT_EQ(s.play(), "R0 ");
    EXPECT_NE(s.view.shownBitmap(), nullptr);
  }
}

TEST(PreviewRenders, ThePictureStaysUntilTheNextOneIsDrawn) {
  Session s("", {120, 90});
  s.play();
  int paintings = 0;
  s.windows.paint = [&] {
    const PreviewBitmap* const shown = s.view.shownBitmap();
    ASSERT_NE(shown, nullptr);
    const Box part = s.view.geometry().source(shown->image);
    const bool isWhole = s.view.requestedFactor() > 1;
    EXPECT_GT(part.width(), isWhole ? shown->image.width - 4 : 0) << paintings;
    EXPECT_LE(part.right, shown->image.width + 1);
    ++paintings;
  };
  s.filter.script = "xxxF";
  s.view.RequestRender();
  s.play();
  s.filter.script = "x";
  s.view.ZoomBy(-3);
  s.play();
  s.filter.script = "F";
  s.view.ZoomBy(3);
  s.play();
  EXPECT_GT(paintings, 8);
}

TEST(PreviewRenders, TheUntouchedPictureIsShownUntilItIsLetGoOrTheScaleChanges) {
  Session s;
  std::vector<std::uint8_t> input(3 * 400, 77);
  s.filter.record.inData = input.data();
  s.view.showUntouched(true);  // nothing is rendered yet
  s.filter.row[1] = 255;
  s.play();
  EXPECT_EQ(s.windows.caption, "Preview   clipped: 0.3%");
  EXPECT_EQ(s.view.shownBitmap()->pixels[0], 0);
  s.view.showUntouched(true);
  EXPECT_EQ(s.view.shownBitmap()->pixels[0], 77);
  s.view.RequestRender();
  s.play();
  EXPECT_EQ(s.view.shownBitmap()->pixels[0], 77);
  s.view.showUntouched(false);
  EXPECT_EQ(s.view.shownBitmap()->pixels[0], 0);
  s.view.showUntouched(true);
  s.view.ZoomBy(1);
  s.play();
  EXPECT_EQ(s.view.shownBitmap()->pixels[0], 0);
}

TEST(PreviewRenders, TheSplitKeepsTheUntouchedPictureAndItsPlaceInTheFrame) {
  Session s;
  std::vector<std::uint8_t> input(3 * 400, 77);
  s.filter.record.inData = input.data();
  s.view.showSplit(true);
  s.play();
  s.windows.paint = [&] {
    ASSERT_NE(s.view.splitBitmap(), nullptr);
    EXPECT_EQ(s.view.splitBitmap()->pixels[0], 77);
  };
  for (const auto& [script, steps] : {std::pair{"xx", 0}, {"x", 1}, {"F", 1}, {"", -1}}) {
    s.filter.script = script;
    s.view.RequestRender();
    s.view.ZoomBy(steps);
    s.play();
    EXPECT_EQ(s.view.splitBitmap()->image, s.view.shownBitmap()->image) << script;
  }
  s.view.showUntouched(true);
  EXPECT_EQ(s.view.splitBitmap(), nullptr);
  s.view.showUntouched(false);
  s.pointer.OnLeftDown({253, 9});
  s.pointer.OnMove({103, 9});
  s.windows.frame.width = 1000;
  EXPECT_EQ(s.view.geometry().splitColumn(), 201);
  EXPECT_EQ(s.pointer.cursorAt({900, 9}, true), PreviewCursor::splitLine);
  EXPECT_TRUE(s.pointer.takeBackDrag());
  EXPECT_EQ(s.view.geometry().splitColumn(), 250);
  s.view.showSplit(false);
  EXPECT_EQ(s.pointer.cursorAt({250, 9}, true), PreviewCursor::cross);
}

TEST(PreviewRenders, TheWheelZoomsAtThePointer) {
  Session s("", {200, 150});
  s.filter.record.imageSize = {3000, 4000};
  s.filter.record.outData = nullptr;
  s.view.AssignScaleFactor(4);
  s.play();
  s.view.panTo({400, 300});
  for (const int steps : {-3, 2, -2, -1}) {
    const Point pointer{30, 120};
    const auto before = s.view.geometry().clientToImage(pointer, {});
    s.view.ZoomTo(s.view.requestedFactor() + steps, pointer);
    s.play();
    const auto now = s.view.geometry().clientToImage(pointer, {});
    EXPECT_NEAR(now[0] * 4000, before[0] * 4000, 8.0) << steps;
    EXPECT_NEAR(now[1] * 3000, before[1] * 3000, 8.0) << steps;
  }
}

TEST(PreviewRenders, ZoomAndDraftsKeepTheMiddleOfTheView) {
  Dice dice;
  for (int walk = 0; walk < 200; ++walk) {
    Session s("", {201, 149});
    s.filter.record.imageSize = {3000, 4000};
    s.filter.record.outData = nullptr;  // nothing to draw
    s.view.AssignScaleFactor(4);
    s.view.ZoomBy(0);
    s.play();
    s.view.panTo({dice(250, 500), dice(200, 400)});
    const auto middle = [&] { return s.view.geometry().clientToImage({100, 74}, {}); };
    auto before = middle();
    for (int step = 0; step < 12; ++step) {
      s.filter.script = std::string(static_cast<std::size_t>(dice(0, 2)), 'x');
      s.view.RequestRender();
      s.view.ZoomBy(dice(-5, 4) - s.view.requestedFactor());
      s.play();
      const auto now = middle();
      // The step may cost two pixels of the coarser factor, and drafts nothing.
      ASSERT_NEAR(now[0] * 4000, before[0] * 4000, 8.0) << walk;
      ASSERT_NEAR(now[1] * 3000, before[1] * 3000, 8.0) << walk;
      before = now;
    }
  }
}

TEST(PreviewRenders, AreCutShortOnlyByALiveChangeAfterAWhile) {
  pfFilterRadiashafts filter;
  for (int state = 0; state < 12; ++state) {
    const std::uint32_t ages[] = {0, 201, 300000};
    const std::uint32_t age = ages[state / 4];
    bRenderPending = state % 2 != 0;
    bLivePreview = state / 2 % 2 != 0;
    nRenderStartTick = platform::tickCount() - age;
    EXPECT_EQ(filter.Progress(0, 9, 0), state % 4 == 3 && age > 0 ? -128 : 0) << state;
  }
  bInterfaceEnded = true;
  EXPECT_EQ(filter.Progress(0, 9, 0), -1);
  bInterfaceEnded = false;
  nRenderStartTick = 0;
  bRenderPending = false;
}

}  // namespace
}  // namespace radiashafts::test
