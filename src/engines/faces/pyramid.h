// A grey picture and its halves, and the patches that are cut out of them.
//
// Positions and sizes are in pixels of the whole picture: pixel i of a row covers i to i + 1. Pixel i of level k covers
// i * 2^k to (i + 1) * 2^k.
#ifndef CATALOGCORE_ENGINES_FACES_PYRAMID_H_
#define CATALOGCORE_ENGINES_FACES_PYRAMID_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/pixel_view.h"
#include "engines/faces/grey_copy.h"

namespace catalogcore::faces {

// A square around a possible face.
struct Place {
  double x = 0;  // of the centre
  double y = 0;
  double size = 0;  // length of a side, positive
  int quarter = 0;  // quarter turns clockwise by which the face is turned, 0 to 3
};

// A direction in the picture.
struct Direction {
  double right = 0;
  double down = 0;
};

// The direction in the picture of a direction in a patch that shows a face upright.
Direction InPicture(int quarter, const Direction& inPatch);

// A picture of one 8-bit grey sample a pixel, rows without padding.
struct GreyPicture {
  PictureSize size;
  std::vector<std::uint8_t> pixels;

  PixelView View() const { return {pixels.data(), size.height, size.width}; }
};

class Pyramid {
 public:
  // Halves the picture while its shorter side has at least 40 pixels. REQUIRES: the picture outlives the pyramid and
  // has no padding. Throws std::bad_alloc.
  explicit Pyramid(const PixelView& picture);

  std::size_t LevelCount() const { return halves_.size() + 1; }
  PixelView Level(std::size_t level) const { return level == 0 ? picture_ : halves_[level - 1].View(); }

  // Fills `patch`, whose size is set, with the surroundings of the place, turned upright, so that the place's size
  // takes `side` pixels. Interpolates linearly; outside the picture lies a grey of 128.
  void CutUpright(const Place& place, double side, GreyPicture& patch) const;

 private:
  PixelView picture_;
  std::vector<GreyPicture> halves_;
};

}  // namespace catalogcore::faces

#endif  // CATALOGCORE_ENGINES_FACES_PYRAMID_H_
