// Cuts small upright squares out of a picture: shifted, scaled, turned and mirrored views of one place.
#ifndef CATALOGCORE_ENGINES_FACES_PATCH_SAMPLER_H_
#define CATALOGCORE_ENGINES_FACES_PATCH_SAMPLER_H_

#include <cstddef>
#include <vector>

#include "engines/faces/grey_picture.h"

namespace catalogcore::faces {

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

// REQUIRES: the picture outlives the sampler. Half-size copies are made when a square first needs them.
class PatchSampler {
 public:
  explicit PatchSampler(const GreyView& picture) : picture_(picture) {}

  // Fills `patch`, whose size is set, by linear interpolation; what lies outside the picture repeats its
  // border.
  void Sample(const Square& square, const Pose& pose, GreyPicture& patch);

 private:
  std::size_t HalvingsFor(double step) const;
  GreyView Halved(std::size_t halvings);

  GreyView picture_;
  std::vector<GreyPicture> halves_;
};

}  // namespace catalogcore::faces

#endif  // CATALOGCORE_ENGINES_FACES_PATCH_SAMPLER_H_
