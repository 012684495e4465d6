// Converts between image pixels, normalised positions and screen pixels of the preview's frame.
#pragma once

#include <array>

namespace radiashafts {

struct Extent {
  int width = 0;
  int height = 0;
  bool operator==(const Extent&) const = default;
};

struct Point {
  int x = 0;
  int y = 0;
};

struct Box {
  int left = 0;
  int top = 0;
  int right = 0;  // exclusive, as bottom is
  int bottom = 0;

  int width() const { return right - left; }
  int height() const { return bottom - top; }
  bool operator==(const Box&) const = default;
};

// The frame's origin is (0, 0) of the preview's client area.
struct PreviewGeometry {
  Extent frame;             // screen pixels
  Extent image;             // the rendered image
  double viewScale = 1.0;   // image pixels per screen pixel; below 1 the image is enlarged
  Point pan;                // image pixels; y counts from the image's bottom
  int dotsPerInch = 96;     // of the screen
  double splitShare = 0.5;  // of the frame's width; left of it the untouched picture is compared

  Extent display() const;  // size of the whole image in screen pixels
  void limitPan();
  // The image pixel in the middle of the frame at a scale in image pixels per screen pixel; along
  // an axis on which the image is smaller than the frame, the image's middle.
  Point centre(double scale) const;
  void panTo(Point centre);
  // The pixel in a rendering of the image in another size; in the middle when the image is empty.
  Point pixelOf(Extent rendering, Point pixel) const;

  Box destination() const;  // the part of the frame that the image covers
  // The pixels shown there of a rendering of the image in another size, or in its own; y counts
  // from the bottom.
  Box source(Extent rendering) const;
  // The rest of the frame: above, below, left and right. Their lower ends extend below the frame,
  // to cover what a resize has just uncovered.
  std::array<Box, 4> margins() const;

  // The screen pixel of a normalised position.
  Point handle(double x, double y) const;
  // The first column of the frame right of the split line.
  int splitColumn() const;
  void moveSplit(int column);
  bool isOnSplit(Point point) const;  // or within a few pixels of the line
  bool isOnHandle(Point point, std::array<double, 2> light) const;
  // Screen pixels for a length in pixels at 96 dots per inch; at least 1.
  int scaled(int pixels) const;
  // The normalised position at a point of the client area; in the margins it is outside 0 to 1. An
  // axis on which the image has no size gets the value of fallback.
  std::array<double, 2> clientToImage(Point point, std::array<double, 2> fallback) const;
};

// The box moved into the area and, where it is larger, made as small as the area.
Box movedInto(const Box& area, const Box& box);

// The truncated value, clamped so that arithmetic on screen coordinates cannot overflow; 0 for NaN.
int wholePixels(double value);

// The light's handle: nested squares, innermost first, around them a black one with diagonals.
// Sizes are in pixels at 96 dots per inch.
struct HandleSquare {
  int halfSize;
  unsigned color;  // a grey, so the channel order does not matter
};
inline constexpr std::array<HandleSquare, 5> handleSquares{
    {{1, 0xEEEEEE}, {3, 0xBBBBBB}, {5, 0x999999}, {7, 0x666666}, {9, 0x333333}}};
inline constexpr int handleOuterHalfSize = 11;

}  // namespace radiashafts
