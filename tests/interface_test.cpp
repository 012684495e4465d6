// The preview: its steps of zoom, where things are in its frame, its pixels, and its renders.

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include <gtest/gtest.h>

#include "frame/pf_filter_radiashafts.h"
#include "interface/model/host_drawing.h"
#include "interface/model/preview_pixels.h"
#include "interface/model/preview_view.h"
#include "platform/tick.h"
#include "tests/support/fake_interface.h"

namespace radiashafts::test {
namespace {

constexpr unsigned seed = 20;

// From least to most, each as likely.
struct Dice {
  int operator()(int least, int most) {
    return std::uniform_int_distribution<int>(least, most)(random);
  }
  std::mt19937 random{seed};
};

TEST(ViewScale, ADraftShowsThePictureAtTheSizeThatItsPercentageTells) {
  const std::pair<int, const char*> steps[] = {
      {-13, "1000%"}, {-200, "1.347e+04%"}, {-2, "266.7%"}, {-1, "200%"},  {0, "133.3%"},
      {1, "100%"},    {2, "50%"},           {3, "33.33%"},  {7, "14.29%"}, {1000, "0.1%"}};
  for (const auto& [factor, text] : steps) {
    for (int draft = 0; draft < 9; ++draft) {
      const ViewScale scale{factor, draft};
      EXPECT_EQ(scale.percentage(), text);
      const double shown = 100.0 / (scale.renderFactor() * scale.viewScale());
      EXPECT_NEAR(shown / std::stod(text), 1.0, 4e-4) << factor << ' ' << draft;
    }
  }
  const auto render = [](int factor, int draft) { return ViewScale{factor, draft}.renderFactor(); };
  EXPECT_EQ((std::array{render(-5, 0), render(0, 3), render(1, 0), render(1, 1), render(4, 2)}),
            (std::array{1, 4, 1, 2, 6}));
  const auto step = [](int f, int draft) { return ViewScale{f, draft}.imagePixelsPerStep(); };
  EXPECT_EQ((std::array{step(-4, 0), step(0, 0), step(0, 2), step(-1, 2), step(1, 0), step(3, 2)}),
            (std::array{1, 1, 2, 1, 1, 5}));
}

TEST(FittingFactor, IsTheSmallestAtWhichThePictureIsSmallerThanTheFrame) {
  Dice dice;
  EXPECT_EQ(fittingFactor({32767, 5}, {0, 0}), 32768);
  for (int i = 0; i < 5000; ++i) {
    const Extent image{dice(1, 3000), dice(1, 3000)}, frame{dice(1, 900), dice(1, 900)};
    const auto fits = [&](int factor) {
      return image.width / factor < frame.width && image.height / factor < frame.height;
    };
    const int factor = fittingFactor(image, frame);
    ASSERT_TRUE(fits(factor) && (factor == 1 || !fits(factor - 1))) << i << " of seed " << seed;
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

bool isInside(const Box& box, Point p) {
  return p.x >= box.left && p.x < box.right && p.y >= box.top && p.y < box.bottom;
}

TEST(PreviewGeometry, ShowsAPartOfThePictureInTheMiddleOfTheFrameAndMarginsAroundIt) {
  Dice dice;
  for (int i = 0; i < 5000; ++i) {
    SCOPED_TRACE(testing::Message() << i << " of seed " << seed);
    const PreviewGeometry view = anyView(dice);
    const Box from = view.source(), to = view.destination();
    ASSERT_TRUE(from.left >= 0 && from.right <= view.image.width);
    ASSERT_TRUE(from.top >= 0 && from.bottom <= view.image.height);
    ASSERT_LE(std::abs(to.left - (view.frame.width - to.right)), 1);
    ASSERT_LE(std::abs(to.top - (view.frame.height - to.bottom)), 1);
    // It is scrolled only along a side that the frame does not hold.
    ASSERT_TRUE(view.pan.x == 0 || to.width() == view.frame.width);
    ASSERT_TRUE(view.pan.y == 0 || to.height() == view.frame.height);
    for (int n = 0; n < 10; ++n) {
      const Point p{dice(0, view.frame.width - 1), dice(0, view.frame.height - 1)};
      const auto margins = view.margins();
      const bool inMargin = std::any_of(margins.begin(), margins.end(),
                                        [p](const Box& box) { return isInside(box, p); });
      ASSERT_NE(isInside(to, p), inMargin);
    }
  }
}

// The display's size is rounded for the pointer and truncated for the handle, and places are
// truncated on both ways.
TEST(PreviewGeometry, PointerHandleAndPaintedPixelAgree) {
  Dice dice;
  for (int i = 0; i < 20000; ++i) {
    SCOPED_TRACE(testing::Message() << i << " of seed " << seed);
    const PreviewGeometry view = anyView(dice);
    const Box from = view.source(), to = view.destination();
    if (to.width() == 0 || to.height() == 0) continue;
    const Point p{dice(to.left, to.right - 1), dice(to.top, to.bottom - 1)};
    const auto [x, y] = view.clientToImage(p, {-9.0, -9.0});
    const Point handle = view.handle(x, y);
    ASSERT_LE(std::abs(handle.x - p.x), 2);
    ASSERT_LE(std::abs(handle.y - p.y), 2);
    const double column = from.left + (p.x - to.left + 0.5) * from.width() / to.width();
    const double row = from.top + (to.bottom - p.y - 0.5) * from.height() / to.height();
    const double pixels = 1.0 + 2.0 * view.viewScale;
    ASSERT_NEAR(x * view.image.width, column, pixels);
    ASSERT_NEAR(y * view.image.height, view.image.height - row, pixels);
  }
  // Margins lie outside 0 to 1; along a side that nothing is shown of the position stays.
  const PreviewGeometry small{{100, 100}, {50, 20}, 1.0, {}};
  EXPECT_EQ(small.clientToImage({0, 99}, {}), (std::array{-0.5, 2.95}));
  EXPECT_EQ(small.handle(-0.5, 2.95).y, 99);
  EXPECT_EQ((PreviewGeometry{{9, 9}, {}, 1.0, {}}.clientToImage({3, 4}, {0.25, 7.0})),
            (std::array{0.25, 7.0}));
  const double nowhere = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(small.handle(nowhere, 1e300).x, 0);
}

// A pixel of the bitmap, worked out on its own; plane -1 is black.
std::uint8_t shownByte(const hostapi::FilterRecord& r, int x, int y, int plane, int alphaPlane) {
  const std::uint8_t* row = static_cast<const std::uint8_t*>(r.outData) + y * r.outRowBytes;
  const auto sample = [&](int index, double scale8, double scale16, double scale32) {
    const int i = x * r.planes + index;
    if (r.depth == 32) return reinterpret_cast<const float*>(row)[i] * scale32;
    if (r.depth == 16) return reinterpret_cast<const std::uint16_t*>(row)[i] * scale16;
    return row[i] * scale8;
  };
  double value = plane < 0 ? 0.0 : std::min(sample(plane, 1.0, 2.0 / 257, 255.0), 255.0);
  if (alphaPlane >= 0) {
    const int cellX = x * r.imageSize.h / r.outRect.right / 16;
    const int cellY = y * r.imageSize.v / r.outRect.bottom / 16;
    const double behind = cellX % 2 == cellY % 2 ? 208.0 : 255.0;
    value = (value - behind) * sample(alphaPlane, 0.003921569, 1.0 / 35768, 1.0) + behind;
  }
  return std::isnan(value) ? 0 : static_cast<std::uint8_t>(std::max(0.0, std::min(value, 255.0)));
}

TEST(PreviewPixels, AreThePicturesOverACheckerboard) {
  struct {
    std::vector<int> modes;
    std::int16_t layer, mask, other, planes;
    int colors, alphaPlane;
  } const cases[] = {
      {{1, 10, 17}, 1, 0, 0, 1, 1, -1},
      {{1, 10, 17}, 1, 1, 0, 2, 1, 1},
      {{1, 10, 17}, 3, 0, 0, 4, 1, -1},
      {{3, 7, 11, 14, 16}, 3, 1, 0, 4, 3, 3},
      {{3, 7, 11, 14, 16}, 3, 1, 0, 3, 3, -1},  // the transparency is not among the planes
      {{3, 7, 11, 14, 16}, 3, 0, 9, 4, 3, -1},
      {{3, 16}, 0, 0, 4, 5, 3, -1},
      {{3, 16}, 0, 0, 0, 5, 3, -1},
      {{3, 16}, 0, 0, 0, 1, 1, -1},
      {{7, 14, 3}, 2, 0, 0, 2, 2, -1},
      {{7, 14, 3}, 2, 1, 0, 3, 2, 2},
      {{7, 14}, 4, 1, 0, 5, 3, 4},
      {{3}, 4, 0, 0, 2, 2, -1},
      {{0, 2, 4, 9, 12, 15, 18}, 3, 1, 0, 4, 0, -1}};
  Dice dice;
  for (const auto& c : cases) {
    for (const int mode : c.modes) {
      for (const int depth : {0, 8, 16, 32, 1}) {
        const int width = dice(1, 70), height = dice(1, 50), factor = dice(1, 3);
        SCOPED_TRACE(testing::Message() << "seed " << seed << " mode " << mode << " depth " << depth
                                        << " planes " << c.planes << " layer " << c.layer);
        hostapi::FilterRecord r{};
        r.imageMode = static_cast<std::int16_t>(mode);
        r.depth = depth;
        r.planes = c.planes;
        r.inLayerPlanes = c.layer;
        r.inTransparencyMask = c.mask;
        r.inNonLayerPlanes = c.other;
        r.outRect = {0, 0, static_cast<std::int16_t>(height), static_cast<std::int16_t>(width)};
        r.imageSize = {static_cast<std::int16_t>(height * factor + dice(0, factor - 1)),
                       static_cast<std::int16_t>(width * factor + dice(0, factor - 1))};
        r.outRowBytes = width * c.planes * 4 + 12;
        std::vector<std::uint8_t> picture(static_cast<std::size_t>(height * r.outRowBytes));
        for (std::size_t i = 0; i + 4 <= picture.size(); i += 4) {
          const float number = static_cast<float>(dice(-200, 1300)) / 1000.0F;
          const std::uint16_t samples[] = {static_cast<std::uint16_t>(dice(0, 32768)), 32768};
          std::memcpy(&picture[i], depth == 32 ? static_cast<const void*>(&number) : samples, 4);
        }
        const float noNumber = std::numeric_limits<float>::quiet_NaN();
        if (depth == 32) std::memcpy(picture.data(), &noNumber, 4);

        const int bitmapWidth = bitmapWidthFor(width);
        ASSERT_TRUE(bitmapWidth > width && bitmapWidth <= width + 32 && bitmapWidth % 32 == 0);
        for (const bool host : {true, false}) {
          constexpr std::uint8_t untouched = 0xA5;
          std::vector<std::uint8_t> expected(static_cast<std::size_t>(bitmapWidth * 3 * height),
                                             untouched);
          auto bitmap = expected;
          const bool shown = c.colors > 0 && depth != 1;
          const auto order = host ? BitmapOrder::forHost : BitmapOrder::forSystem;
          r.outData = nullptr;
          EXPECT_FALSE(drawToPreview(r, order, bitmapWidth, bitmap.data()));
          r.outData = picture.data();
          EXPECT_EQ(drawToPreview(r, order, bitmapWidth, bitmap.data()), shown);
          for (int y = 0; shown && y < height; ++y) {
            std::uint8_t* to =
                &expected[static_cast<std::size_t>(host ? y : height - 1 - y) * bitmapWidth * 3];
            for (int i = 0; i < 3 * width; ++i) {
              const int ofTwo[] = {1, 0, -1};
              const int plane = c.colors == 1   ? 0
                                : c.colors == 2 ? ofTwo[i % 3]
                                                : (host ? i % 3 : 2 - i % 3);
              *to++ = shownByte(r, i / 3, y, plane, c.alphaPlane);
            }
          }
          ASSERT_EQ(bitmap, expected) << (host ? "for the host" : "for the system");
        }
      }
    }
  }
}

// Gives the pixel of the sample at x, y as another one drawn; rows from the top.
using Pixel = std::array<int, 3>;
struct DrawnSample {
  const std::vector<std::uint8_t> sample = drawingSample();
  Pixel at(int x, int y) const {
    const auto* pixel = &sample[(static_cast<std::size_t>(y) * sampleWidth + x) * 3];
    return {pixel[0], pixel[1], pixel[2]};
  }
  template <class Draw>
  bool shows(const Draw& draw) const {
    std::vector<std::uint8_t> drawn;
    for (int y = sampleHeight - 1; y >= 0; --y) {
      for (int x = 0; x < sampleWidth; ++x) {
        const Pixel seen = draw(x, y);
        for (const int channel : {seen[2], seen[1], seen[0]}) {
          drawn.push_back(static_cast<std::uint8_t>(std::clamp(channel, 0, 255)));
        }
      }
    }
    return showsSample(drawn.data());
  }
};

TEST(HostDrawing, OfAnotherShadeIsRightAndOfOtherPlacesOrChannelsIsWrong) {
  const DrawnSample s;
  EXPECT_TRUE(s.shows([&](int x, int y) { return s.at(x, y); }));
  // Dull inks on warm paper, and a dark monitor.
  EXPECT_TRUE(s.shows([&](int x, int y) {
    const Pixel p = s.at(x, y);
    const int mean = (p[0] + p[1] + p[2]) / 3;
    return Pixel{30 + (p[0] + mean) * 2 / 5, 25 + (p[1] + mean) * 2 / 5, 15 + (p[2] + mean) / 3};
  }));
  EXPECT_TRUE(s.shows([&](int x, int y) {
    const auto dark = [](int c) { return c * c / 400; };
    return Pixel{dark(s.at(x, y)[0]), dark(s.at(x, y)[1]), dark(s.at(x, y)[2])};
  }));
  constexpr int orders[][3] = {{0, 2, 1}, {1, 0, 2}, {2, 1, 0}, {1, 2, 0}, {2, 0, 1}, {0, 0, 0}};
  for (const auto& order : orders) {
    EXPECT_FALSE(s.shows([&](int x, int y) {
      const Pixel p = s.at(x, y);
      return Pixel{p[static_cast<std::size_t>(order[0])], p[static_cast<std::size_t>(order[1])],
                   p[static_cast<std::size_t>(order[2])]};
    }));
  }
  EXPECT_FALSE(s.shows([&](int x, int y) { return s.at(x, sampleHeight - 1 - y); }));
  EXPECT_FALSE(s.shows([&](int x, int y) { return s.at(sampleWidth - 1 - x, y); }));
  for (const int level : {0, 128, 255}) {
    EXPECT_FALSE(s.shows([level](int, int) { return Pixel{level, level, level}; }));
  }
  // Black where white is to be and the other way round; primaries stay.
  EXPECT_FALSE(s.shows([&](int x, int y) {
    const Pixel p = s.at(x, y);
    return p[0] == p[1] && p[1] == p[2] ? Pixel{255 - p[0], 255 - p[1], 255 - p[2]} : p;
  }));
  // A grey with a colour.
  EXPECT_FALSE(s.shows([&](int x, int y) {
    const Pixel p = s.at(x, y);
    return p[0] == 128 ? Pixel{200, 128, 60} : p;
  }));
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
  std::string zoom(int steps) {
    view.ZoomBy(steps);
    return play();
  }
  FakeFilter filter;
  FakeWindows windows;
  PreviewView view{windows};
};

TEST(PreviewRenders, AChangeThatCutsOneShortIsFollowedByADraftAndThenByFullQuality) {
  const std::pair<const char*, const char*> cases[] = {{".", "S1 R0 "},
                                                       {"p", "S1 R0 R0 "},
                                                       {"x", "S1 R0 S2 R1 S1 R0 "},
                                                       {"xx", "S1 R0 S2 R1 S3 R2 S1 R0 "},
                                                       {"xpp", "S1 R0 S2 R1 R1 R1 S1 R0 "},
                                                       {"x.x", "S1 R0 S2 R1 S1 R0 S2 R1 S1 R0 "},
                                                       {"-", "S1 R0 S2 R0 "},
                                                       {"x-", "S1 R0 S2 R1 S3 R1 S2 R0 "},
                                                       {"e", "S1 R0 "},
                                                       {"m", "S1 R0 "},
                                                       {"xe", "S1 R0 S2 R1 "}};
  for (const auto& [renders, log] : cases) {
    Session s(renders);
    EXPECT_EQ(s.play(), log) << renders;
    const bool fails = std::strpbrk(renders, "em") != nullptr;
    EXPECT_EQ(s.view.hasBitmap(), !fails) << renders;
    s.view.RequestRender();
    EXPECT_EQ(s.play(), renders == std::string("xe") ? "R1 S1 R0 " : "R0 ") << renders;
    EXPECT_TRUE(s.view.hasBitmap());
  }
}

TEST(PreviewRenders, StopWhereTheHostFailsAndAskAgainAtTheNextChange) {
  for (const bool draft : {false, true}) {
    Session s(draft ? "xFF" : ".");
    EXPECT_EQ(s.play(), draft ? "S1 R0 S2 S2 " : "S1 R0 ");
    if (!draft) {
      s.filter.script = "FF";
      EXPECT_EQ(s.zoom(1), "S2 S2 ");
    }
    EXPECT_FALSE(s.view.hasBitmap());
    EXPECT_FALSE(s.view.needsRender());
    s.view.RequestRender();
    EXPECT_EQ(s.play(), draft ? "S2 R1 S1 R0 " : "S2 R0 ");
    EXPECT_TRUE(s.view.hasBitmap());
  }
}

TEST(PreviewRenders, WithoutMemoryThePreviewStaysBlackUntilThereIsSome) {
  Session s;
  s.play();
  s.filter.outOfMemory = true;
  EXPECT_EQ(s.zoom(1), "S2 R0 ");
  EXPECT_FALSE(s.view.hasBitmap() || s.view.bitmap() != nullptr);
  s.filter.outOfMemory = false;
  EXPECT_EQ(s.zoom(1), "S3 R0 ");
  EXPECT_TRUE(s.view.hasBitmap());
}

TEST(PreviewRenders, EnlargingRendersNothingNew) {
  Session s("", {100, 80});
  EXPECT_EQ(s.play(), "S5 R0 ");
  EXPECT_EQ(s.windows.percentage, "20%");
  EXPECT_EQ(s.zoom(-4), "S1 R0 ");
  for (const char* text : {"133.3%", "200%", "266.7%"}) {
    EXPECT_EQ(s.zoom(-1), "");
    EXPECT_EQ(s.windows.percentage, text);
    EXPECT_TRUE(s.view.hasBitmap());
  }
  EXPECT_EQ(s.zoom(4), "S2 R0 ");
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
      s.zoom(dice(-5, 4) - s.view.requestedFactor());
      const auto now = middle();
      // The step may cost two pixels of the coarser factor, and drafts nothing.
      const double pixels = 8.0;
      ASSERT_NEAR(now[0] * 4000, before[0] * 4000, pixels) << walk << " of seed " << seed;
      ASSERT_NEAR(now[1] * 3000, before[1] * 3000, pixels) << walk << " of seed " << seed;
      before = now;
    }
  }
}

TEST(PreviewRenders, AreCutShortOnlyByALiveChangeAfterAWhile) {
  pfFilterRadiashafts filter;
  for (const bool pending : {false, true}) {
    for (const bool live : {false, true}) {
      for (const std::uint32_t age : {0U, 201U, 5000U}) {
        bRenderPending = pending;
        bLivePreview = live;
        nRenderStartTick = platform::tickCount() - age;
        const int status = pending && live && age > 0 ? -128 : 0;
        EXPECT_EQ(filter.Progress(0, 9, 0), status) << pending << live << age;
      }
    }
  }
  nRenderStartTick = 0;
  bRenderPending = false;
}

}  // namespace
}  // namespace radiashafts::test
