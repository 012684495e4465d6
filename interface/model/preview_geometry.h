// Where the picture, the light's handle and the pointer are in the preview's frame.
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
};

// The frame stands at (0, 0) of the preview's client area.
struct PreviewGeometry {
  Extent frame;            // screen pixels
  Extent image;            // the rendered image
  double viewScale = 1.0;  // image pixels per screen pixel; below 1 the image is enlarged
  Point pan;               // image pixels; y counts from the image's bottom

  Extent display() const;  // of the whole image on the screen
  void limitPan();
  // The image pixel in the middle of the frame, seen at a scale; the image's own middle where the
  // image fits in the frame.
  Point centre(double scale) const;
  void panTo(Point centre);

  Box destination() const;  // the part of the frame that the image fills
  Box source() const;       // the image pixels shown there; y counts from the bottom
  // The rest of the frame: above, below, left and right. The lower ends reach past the frame, over
  // what a resize has just uncovered.
  std::array<Box, 4> margins() const;

  // The place of a normalised position on the screen.
  Point handle(double x, double y) const;
  // The normalised position under a point of the client area; margins lie outside 0 to 1. An axis
  // along which nothing is shown keeps what it gets in.
  std::array<double, 2> clientToImage(Point point, std::array<double, 2> otherwise) const;
};

// The truncated value, held in a range that no arithmetic on screen coordinates leaves.
int wholePixels(double value);

// The light's handle: nested squares from the middle outward, and a black one with its diagonals.
struct HandleSquare {
  int halfSize;
  unsigned color;  // grey levels, so that the order of channels does not matter
};
inline constexpr std::array<HandleSquare, 5> handleSquares{
    {{1, 0xEEEEEE}, {3, 0xBBBBBB}, {5, 0x999999}, {7, 0x666666}, {9, 0x333333}}};
inline constexpr int handleOuterHalfSize = 11;

}  // namespace radiashafts
