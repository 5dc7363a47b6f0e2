// Cuts small upright squares out of a picture: shifted, scaled, turned and mirrored views of one place.
#ifndef CATALOGCORE_ENGINES_FACES_PATCH_SAMPLER_H_
#define CATALOGCORE_ENGINES_FACES_PATCH_SAMPLER_H_

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/pixel_view.h"
#include "engines/faces/grey_copy.h"

namespace catalogcore::faces {

// A picture of one 8-bit grey sample a pixel, rows without padding.
struct GreyPicture {
  PictureSize size;
  std::vector<std::uint8_t> pixels;

  PixelView View() const { return {pixels.data(), size.height, size.width}; }
};

// A square of the picture, in pixels; the centre may lie anywhere.
struct Square {
  double centreX = 0;
  double centreY = 0;
  double side = 0;  // positive
};

// How a patch shows the square: `side` pixels wide around its own centre, turned clockwise by `degrees`, and
// then mirrored or not.
struct Pose {
  double side = 0;
  double degrees = 0;
  bool isMirrored = false;
};

// REQUIRES: the picture outlives the sampler and has no padding. Makes half-size copies when a square first needs them.
class PatchSampler {
 public:
  explicit PatchSampler(const PixelView& picture) : picture_(picture) {}

  // Fills `patch`, whose size is set, by linear interpolation. Places outside the picture repeat its border.
  void Sample(const Square& square, const Pose& pose, GreyPicture& patch);

 private:
  std::size_t HalvingsFor(double step) const;
  PixelView Halved(std::size_t halvings);

  PixelView picture_;
  std::vector<GreyPicture> halves_;
};

}  // namespace catalogcore::faces

#endif  // CATALOGCORE_ENGINES_FACES_PATCH_SAMPLER_H_
