// The preview: its pixels, its handle, its moves, and the renders behind it.

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "interface/win32/dialog_ids.h"
#include "tests/dialogs/dialog_test.h"
#include "tests/dialogs/screen.h"
#include "tests/support/test_pictures.h"

namespace radiashafts::test {
namespace {

constexpr int xEdit = 1031;
constexpr int yEdit = 1032;

class Preview : public DialogTest {};

// As a host reduces a picture: every factor-th pixel.
standin::Picture reduced(const standin::Picture& picture, int factor) {
  standin::Picture small = picture;
  small.width = picture.width / factor;
  small.height = picture.height / factor;
  small.allocate();
  for (int y = 0; y < small.height; ++y) {
    for (int x = 0; x < small.width; ++x) {
      const std::uint8_t* from = pixelAt(picture, x * factor, y * factor);
      std::copy(from, from + picture.pixelBytes(), const_cast<std::uint8_t*>(pixelAt(small, x, y)));
    }
  }
  return small;
}

// The picture as the preview is to show it, by the judge's render: 8-bit RGB, with the checkerboard
// behind what is transparent.
standin::Picture expectedPreview(const standin::Picture& picture, const judge::Values& values,
                                 int factor) {
  const standin::Picture small = reduced(picture, factor);
  const int wholeScaleX = picture.width / small.width;
  const int wholeScaleY = picture.height / small.height;
  const judge::Picture render =
      judge::render(judgePicture(small), nullptr, values, wholeScaleX, wholeScaleY);
  const double toByte = picture.depth == 8 ? 1.0 : picture.depth == 16 ? 255.0 / 32768 : 255.0;
  // At 16 bits the scale of alpha ends a little late.
  const double toOpacity = picture.depth == 8 ? 1 / 255.0 : picture.depth == 16 ? 1 / 35768.0 : 1.0;
  standin::Picture shown;
  shown.width = small.width;
  shown.height = small.height;
  shown.planes = shown.colorPlanes = 3;
  shown.allocate();
  for (int y = 0; y < small.height; ++y) {
    for (int x = 0; x < small.width; ++x) {
      const auto pixel = static_cast<std::size_t>(y) * small.width + x;
      const double* from = &render.samples[pixel * static_cast<std::size_t>(small.planes)];
      const int cell =
          x * picture.width / small.width / 16 + y * picture.height / small.height / 16;
      const double behind = cell % 2 == 1 ? 255.0 : 208.0;
      const double opacity = picture.hasAlpha ? from[3] * toOpacity : 1.0;
      for (std::size_t c = 0; c < 3; ++c) {
        const double value = std::min(from[c] * toByte, 255.0);
        shown.bytes[pixel * 3 + c] =
            static_cast<std::uint8_t>(std::clamp((value - behind) * opacity + behind, 0.0, 255.0));
      }
    }
  }
  return shown;
}

// How far the frame is from the picture in its middle, magnified, with grey around it.
int worstDifference(const DialogDriver& dialogs, const standin::Picture& expected, int magnified) {
  const standin::Picture screen = screenPicture(dialogs.frame());
  const int width = expected.width * magnified;
  const int height = expected.height * magnified;
  const int left = (screen.width - width) / 2;
  const int top = (screen.height - height) / 2;
  const std::uint8_t margin[] = {0xBB, 0xBB, 0xBB};
  int worst = 0;
  for (int y = 0; y < screen.height - 4; ++y) {
    for (int x = 0; x < screen.width - 4; ++x) {
      const bool inside = x >= left && y >= top && x < left + width && y < top + height;
      const std::uint8_t* wanted =
          inside ? pixelAt(expected, (x - left) / magnified, (y - top) / magnified) : margin;
      const std::uint8_t* seen = pixelAt(screen, x, y);
      for (int c = 0; c < 3; ++c) worst = std::max(worst, std::abs(wanted[c] - seen[c]));
    }
  }
  return worst;
}

// Hosts whose displayPixels is not what it is to be.
using DisplayPixels = decltype(HostProcs::displayPixels);
DisplayPixels changed(void (*change)(std::uint8_t* pixels, int width, int height)) {
  return [change](hostapi::DisplayPixelsProc draw, const hostapi::PSPixelMap& map, void* context) {
    hostapi::PSPixelMap own = map;
    const int width = map.bounds.right, height = map.bounds.bottom;
    const auto* from = static_cast<const std::uint8_t*>(map.baseAddr);
    std::vector<std::uint8_t> pixels(from, from + map.rowBytes * height);
    change(pixels.data(), width, height);
    own.baseAddr = pixels.data();
    return draw(&own, &map.bounds, 0, 0, context);
  };
}

const std::pair<const char*, DisplayPixels> wrongHosts[] = {
    {"none", nullptr},
    {"swaps red and blue", changed([](std::uint8_t* pixels, int width, int height) {
       for (int i = 0; i < width * height; ++i) std::swap(pixels[3 * i], pixels[3 * i + 2]);
     })},
    {"sees bytes as grey", changed([](std::uint8_t* pixels, int width, int height) {
       for (int i = width * height - 1; i >= 0; --i) std::fill_n(pixels + 3 * i, 3, pixels[i]);
     })},
    {"draws black", changed([](std::uint8_t* pixels, int width, int height) {
       std::fill_n(pixels, 3 * width * height, std::uint8_t{0});
     })},
    {"fails", [](auto...) { return hostapi::OSErr{-50}; }},
    {"fails once it has drawn twice",
     [count = 0](hostapi::DisplayPixelsProc draw, const hostapi::PSPixelMap& map,
                 void* context) mutable {
       return ++count > 2 ? hostapi::OSErr{-50} : draw(&map, &map.bounds, 0, 0, context);
     }}};

TEST_F(Preview, ShowsTheRenderAtEveryDepthHoweverTheHostDraws) {
  Random random(11);
  std::size_t wrong = 0;
  for (const int depth : {8, 16, 32}) {
    for (const bool hasAlpha : {false, true}) {
      for (const bool hostDraws : {true, false}) {
        const standin::Picture picture = placesPicture(151, 112, depth, hasAlpha);
        judge::Values values = randomValues(random);
        values.mode = hostDraws ? 1 : 2;
        HostProcs procs;
        int drawings = 0;
        HANDLE style = nullptr;
        procs.displayPixels = [&](hostapi::DisplayPixelsProc draw, const hostapi::PSPixelMap& map,
                                  void* context) {
          ++drawings;
          GetCurrentActCtx(&style);
          return draw(&map, &map.bounds, 0, 0, context);
        };
        const auto& [way, displayPixels] = wrongHosts[wrong];
        if (!hostDraws) {
          procs.displayPixels = displayPixels;
          ++wrong;
        }
        standin::HostTraits traits;
        traits.displayPixels = hostDraws || displayPixels;
        HostThread host(picture, scriptOf(values), traits, procs);
        DialogDriver dialogs(GetCurrentProcessId());
        ASSERT_TRUE(dialogs.isOpen());
        dialogs.hideHandle();
        for (const auto& [zoom, factor, magnified] :
             {std::tuple{"100%", 1, 1}, std::tuple{"50%", 2, 1}, std::tuple{"200%", 1, 2}}) {
          ASSERT_TRUE(dialogs.zoomTo(zoom));
          const standin::Picture expected = expectedPreview(picture, values, factor);
          int difference = 256;
          EXPECT_TRUE(eventually(
              [&, magnified = magnified] {
                difference = worstDifference(dialogs, expected, magnified);
                return difference <= 2;
              },
              10000))
              << zoom << " at " << depth << " bits, alpha " << hasAlpha << ", host that "
              << (hostDraws ? "draws" : way) << ": " << difference << " levels";
        }
        dialogs.clickOn(IDCANCEL);
        host.result();
        if (hostDraws) {
          EXPECT_GT(drawings, 3);
        }
        EXPECT_EQ(style, nullptr) << "a host's style is its own";
      }
    }
  }
}

// The handle's nested squares around a point, a pixel to either side.
bool handleIsAt(POINT point) {
  constexpr int reach = 13;
  const standin::Picture seen =
      screenPicture({point.x - reach, point.y - reach, point.x + reach + 1, point.y + reach + 1});
  const auto matches = [&seen](int dx, int dy) {
    const auto is = [&](int x, int y, int level) {
      const std::uint8_t* pixel = pixelAt(seen, reach + dx + x, reach + dy + y);
      return pixel[0] == level && pixel[1] == level && pixel[2] == level;
    };
    return is(1, 0, 0xEE) && is(-3, 0, 0xBB) && is(0, 5, 0x99) && is(0, -7, 0x66) &&
           is(9, 0, 0x33) && is(11, 0, 0) && is(-11, 3, 0) && is(6, -6, 0) && is(-4, -4, 0);
  };
  for (int dy = -1; dy <= 1; ++dy) {
    for (int dx = -1; dx <= 1; ++dx) {
      if (matches(dx, dy)) return true;
    }
  }
  return false;
}

// The image pixel that the screen shows at a point, by the low bytes of its coordinates.
POINT placeAt(POINT point) {
  const COLORREF color = screenPixel(point);
  return {GetRValue(color), GetGValue(color)};
}

int apart(LONG a, LONG b) {
  const int difference = std::abs(static_cast<int>(a - b)) & 255;
  return std::min(difference, 256 - difference);
}

TEST_F(Preview, TheHandleIsDroppedWhereThePointerIs) {
  const standin::Picture picture = placesPicture(240, 200);
  HostThread host(picture, withoutRays());
  DialogDriver dialogs(GetCurrentProcessId());
  ASSERT_TRUE(dialogs.isOpen());
  POINT offset{20, -30};
  for (const auto& [zoom, step] :
       {std::pair{"50%", 2}, std::pair{"100%", 1}, std::pair{"200%", 1}}) {
    ASSERT_TRUE(dialogs.zoomTo(zoom));
    if (dialogs.isChecked(ID_HIDE_HANDLE)) dialogs.clickOn(ID_HIDE_HANDLE);
    const RECT frame = dialogs.frame();
    const POINT middle{(frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2};
    const POINT to{middle.x + offset.x, middle.y + offset.y};
    drag({middle.x - 40, middle.y + 15}, to);
    EXPECT_TRUE(eventually([&] { return handleIsAt(to); })) << zoom;
    saveScreenshot(std::string("handle-") + std::to_string(std::atoi(zoom)));
    dialogs.hideHandle();
    moveMouse({frame.right + 30, frame.top});
    POINT place{};
    EXPECT_TRUE(eventually([&, step = step] {
      place = placeAt(to);
      return std::abs(dialogs.number(xEdit) - place.x) <= step &&
             std::abs(dialogs.number(yEdit) - place.y) <= step;
    })) << zoom
        << ": " << dialogs.text(xEdit) << ' ' << dialogs.text(yEdit) << " shown " << place.x << ' '
        << place.y;
    offset = {-offset.x - 25, 55};
  }
  dialogs.clickOn(IDOK);
  EXPECT_EQ(host.result().result.status, 0);
}

TEST_F(Preview, PanAndZoomKeepThePlaceInTheMiddle) {
  const standin::Picture picture = placesPicture(1000, 900);
  HostThread host(picture, withoutRays());
  DialogDriver dialogs(GetCurrentProcessId());
  ASSERT_TRUE(dialogs.isOpen());
  dialogs.hideHandle();
  const RECT frame = dialogs.frame();
  const POINT middle{(frame.left + frame.right) / 2, (frame.top + frame.bottom) / 2};
  dialogs.clickOn(ID_FIXED_PREVIEW);      // drafts round the view to their own, coarser pixels
  ASSERT_TRUE(dialogs.zoomTo("33.33%"));  // all of it: its own middle is in the middle
  ASSERT_TRUE(dialogs.zoomTo("100%"));
  const auto isAt = [](POINT point, POINT place, int tolerance) {
    return eventually(
        [&] {
          const POINT now = placeAt(point);
          return apart(now.x, place.x) <= tolerance && apart(now.y, place.y) <= tolerance;
        },
        5000);
  };
  ASSERT_TRUE(isAt(middle, {500 & 255, 450 & 255}, 3))
      << placeAt(middle).x << ' ' << placeAt(middle).y;

  const POINT grabbed{middle.x + 40, middle.y - 20};
  const POINT moved{grabbed.x - 90, grabbed.y + 50};
  const POINT held = placeAt(grabbed);
  drag(grabbed, moved, Button::right);
  EXPECT_TRUE(isAt(moved, held, 0));
  // A step takes whole pixels of the rendered picture, and loses a part of one in each direction.
  POINT centre = placeAt(middle);
  for (const auto& [zoom, tolerance] :
       {std::pair{"133.3%", 2}, std::pair{"200%", 2}, std::pair{"266.7%", 2}, std::pair{"200%", 2},
        std::pair{"133.3%", 2}, std::pair{"100%", 2}, std::pair{"50%", 4}, std::pair{"100%", 4}}) {
    ASSERT_TRUE(dialogs.zoomTo(zoom));
    EXPECT_TRUE(isAt(middle, centre, tolerance))
        << zoom << ": " << placeAt(middle).x << ' ' << placeAt(middle).y << " and not " << centre.x
        << ' ' << centre.y;
    centre = placeAt(middle);
  }
  drag({frame.left + 10, middle.y}, {frame.left + 900, middle.y}, Button::right);
  EXPECT_TRUE(isAt({frame.left, middle.y}, {0, placeAt({frame.left, middle.y}).y}, 0))
      << "panned past the picture's edge";
  dialogs.clickOn(IDCANCEL);
}

}  // namespace
}  // namespace radiashafts::test
