#ifndef CATALOGCORE_ENGINES_FACES_FACE_H_
#define CATALOGCORE_ENGINES_FACES_FACE_H_

#include <cstdint>

namespace catalogcore {

// One entry of a face list's array: pixels of the picture that was handed in, clipped to it; right and
// bottom are the first column and row beyond the face. The face that answered most surely comes first.
struct OrloFace {
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_ENGINES_FACES_FACE_H_
