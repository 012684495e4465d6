#include "interface/model/preview_geometry.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace radiashafts {

int wholePixels(double value) {
  constexpr double farthest = 1 << 29;
  if (std::isnan(value)) return 0;
  return static_cast<int>(std::clamp(value, -farthest, farthest));
}

Box movedInto(const Box& area, const Box& box) {
  const int width = std::min(box.width(), area.width());
  const int height = std::min(box.height(), area.height());
  const int left = std::clamp(box.left, area.left, area.right - width);
  const int top = std::clamp(box.top, area.top, area.bottom - height);
  return {left, top, left + width, top + height};
}

Extent PreviewGeometry::display() const {
  return {wholePixels(image.width / viewScale), wholePixels(image.height / viewScale)};
}

void PreviewGeometry::limitPan() {
  const auto limit = [this](int value, int imageSide, int frameSide) {
    return std::max(std::min(value, wholePixels(imageSide - frameSide * viewScale)), 0);
  };
  pan = {limit(pan.x, image.width, frame.width), limit(pan.y, image.height, frame.height)};
}

Point PreviewGeometry::centre(double scale) const {
  const auto middle = [scale](int imageSide, int frameSide, int panned) {
    if (imageSide / scale < frameSide) return imageSide / 2;
    return wholePixels(frameSide * scale * 0.5 + panned);
  };
  return {middle(image.width, frame.width, pan.x), middle(image.height, frame.height, pan.y)};
}

void PreviewGeometry::panTo(Point centre) {
  pan = {wholePixels(centre.x - viewScale * 0.5 * frame.width),
         wholePixels(centre.y - viewScale * 0.5 * frame.height)};
}

Box PreviewGeometry::destination() const {
  const Extent shown = display();
  Box box{0, 0, frame.width, frame.height};
  if (shown.width <= frame.width) {
    box.left = (frame.width - shown.width) / 2;
    box.right = box.left + shown.width;
  }
  if (shown.height <= frame.height) {
    box.top = (frame.height - shown.height) / 2;
    box.bottom = box.top + shown.height;
  }
  return box;
}

Point PreviewGeometry::pixelOf(Extent rendering, Point pixel) const {
  const auto scaled = [](int position, int newSide, int oldSide) {
    return oldSide > 0 ? wholePixels(static_cast<double>(position) * newSide / oldSide)
                       : newSide / 2;
  };
  return {scaled(pixel.x, rendering.width, image.width),
          scaled(pixel.y, rendering.height, image.height)};
}

Box PreviewGeometry::source(Extent rendering) const {
  const Box to = destination();
  const Box box{pan.x, pan.y, pan.x + wholePixels(to.width() * viewScale),
                pan.y + wholePixels(to.height() * viewScale)};
  if (rendering == image) return box;
  const Point start = pixelOf(rendering, {box.left, box.top});
  const Point end = pixelOf(rendering, {box.right, box.bottom});
  return {start.x, start.y, std::max(end.x, start.x + 1), std::max(end.y, start.y + 1)};
}

std::array<Box, 4> PreviewGeometry::margins() const {
  constexpr int overhang = 200;  // screen pixels
  const Box to = destination();
  const int bottom = frame.height + overhang;
  return {{{0, 0, frame.width, to.top},
           {0, to.bottom, frame.width, bottom},
           {0, 0, to.left, bottom},
           {to.right, 0, frame.width, bottom}}};
}

Point PreviewGeometry::handle(double x, double y) const {
  const Extent shown = display();
  const Box to = destination();
  return {
      wholePixels(to.left - pan.x / viewScale + shown.width * x),
      wholePixels(shown.height * y + to.top - (shown.height - to.height()) + pan.y / viewScale)};
}

int PreviewGeometry::splitColumn() const {
  return wholePixels(splitShare * frame.width);
}

void PreviewGeometry::moveSplit(int column) {
  if (frame.width > 0) splitShare = (std::clamp(column, 0, frame.width - 1) + 0.5) / frame.width;
}

bool PreviewGeometry::isOnSplit(Point point) const {
  return std::abs(point.x - splitColumn()) <= scaled(4);
}

bool PreviewGeometry::isOnHandle(Point point, std::array<double, 2> light) const {
  const Point centre = handle(light[0], light[1]);
  return std::max(std::abs(point.x - centre.x), std::abs(point.y - centre.y)) <=
         scaled(handleOuterHalfSize);
}

int PreviewGeometry::scaled(int pixels) const {
  constexpr int usual = 96;
  return std::max((pixels * dotsPerInch + usual / 2) / usual, 1);
}

// Rounds the display's size, while display() truncates it, so the two may differ by a pixel. This
// is intended: the positions that a click sets depend on it.
std::array<double, 2> PreviewGeometry::clientToImage(Point point,
                                                     std::array<double, 2> fallback) const {
  const int shownWidth = wholePixels(image.width / viewScale + 0.5);
  const int shownHeight = wholePixels(image.height / viewScale + 0.5);
  int x = point.x;
  int y = point.y;
  if (shownWidth < frame.width) {
    x -= (frame.width - shownWidth) / 2;
  } else {
    x = wholePixels(pan.x / viewScale + x);
  }
  if (shownHeight < frame.height) {
    y -= (frame.height - shownHeight) / 2;
  } else {
    y = wholePixels((shownHeight - frame.height) - pan.y / viewScale + y);
  }
  if (shownWidth > 0) fallback[0] = static_cast<double>(x) / shownWidth;
  if (shownHeight > 0) fallback[1] = static_cast<double>(y) / shownHeight;
  return fallback;
}

}  // namespace radiashafts
