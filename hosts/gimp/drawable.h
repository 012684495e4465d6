// Pixels between GIMP and the library.
#pragma once

#include <cstdint>
#include <vector>

#include <gegl.h>
#include <libgimp/gimp.h>

#include "hosts/gimp/session.h"

namespace radiashafts::gimp {

// A picture as the library takes it.
struct Picture {
  Picture(int pictureWidth, int pictureHeight, const Babl* pictureFormat);
  int rowBytes() const;
  radiashafts_picture view();

  int width, height;
  const Babl* format;
  std::vector<std::uint8_t> bytes;
};

// A layer, a layer's mask or a channel of an image.
class Drawable {
 public:
  // Throws a Failure when its pixels cannot be changed.
  explicit Drawable(gint32 id);

  // The samples are those that GIMP exports: as displayed, in the image's own color space. Images
  // of linear precision and of other depths than 8 and 16 bits come as floats.
  Picture wholePicture() const;

  // As large as fits.
  Picture reducedPicture(int maximumWidth, int maximumHeight) const;

  // How far each pixel of a reduced picture is selected, 0 to 255; empty when everything is.
  std::vector<std::uint8_t> reducedSelection(const Picture& reduced) const;

  // The pictures' format with the image's color space, which the samples themselves are not
  // converted from.
  const Babl* displayFormat() const;

  // Puts the picture where the selection is, as one step of undo. False when the selection leaves
  // out the whole drawable.
  bool replace(const Picture& picture) const;

 private:
  Picture read(double scale) const;

  gint32 id_;
  gint32 image_;
  int width_, height_;
  const Babl* format_;
};

}  // namespace radiashafts::gimp
