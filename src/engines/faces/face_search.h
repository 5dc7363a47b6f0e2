// Finds faces in a grey picture, with two networks. The search network looks at every place of a pyramid of halved
// pictures and proposes faces of any of four orientations. The check network looks at one proposal at a time, turned
// upright, decides whether it is a face and corrects its rectangle.
//
// All decisions are the same on every processor: the networks work in integers, and positions are computed with basic
// operations on doubles only, which no compiler flag of this module lets the compiler contract.
#ifndef CATALOGCORE_ENGINES_FACES_FACE_SEARCH_H_
#define CATALOGCORE_ENGINES_FACES_FACE_SEARCH_H_

#include <cstdint>
#include <vector>

#include "base/pixel_view.h"

namespace catalogcore::faces {

// A rectangle in pixels of the picture; pixel i of a row covers i to i + 1. It may reach beyond the picture.
struct FoundFace {
  double left = 0;
  double top = 0;
  double right = 0;
  double bottom = 0;
  double score = 0;  // logit of the check network
};

// The lowest score of a face. Chosen together with the networks (docs/face-networks.md).
constexpr double kFaceThreshold = 1.0;

// Reads the networks unless they are read; FindFaces calls it too. Throws std::bad_alloc, and std::runtime_error if a
// network is damaged; the next call then tries again.
void PrepareFaceSearch();

// The faces in the picture (rows without padding), highest score first, none below `threshold`. Several threads may
// search at once. Throws what PrepareFaceSearch throws.
std::vector<FoundFace> FindFaces(const PixelView& picture, double threshold = kFaceThreshold);

}  // namespace catalogcore::faces

#endif  // CATALOGCORE_ENGINES_FACES_FACE_SEARCH_H_
