// What the face detector's operations return: faces and result codes.
#ifndef CATALOGCORE_ENGINES_FACES_FACE_H_
#define CATALOGCORE_ENGINES_FACES_FACE_H_

#include <cstdint>

namespace catalogcore {

// An element of a face list's array, in pixels of the caller's picture and clipped to the picture. right and bottom are
// the first column and row beyond the face. The face with the highest confidence comes first.
struct OrloFace {
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;

  bool operator==(const OrloFace&) const = default;
};

namespace faces {

enum class FaceResult : std::int32_t {
  kSuccess = 0,
  kNoContext = 1,      // the context pointer is null
  kNoPixels = 2,       // the pixel pointer is null
  kBadDepth = 3,       // bits per pixel is not 8, 16, 24 or 48
  kBadSize = 4,        // width or height is below kMinSide or above kMaxSide
  kBadStride = 5,      // not negative, shorter than a row, or the rows together take more than 2^31 - 1 bytes
  kNoFaceList = 6,     // the list pointer is null
  kNoPicture = 7,      // the context holds no picture
  kOutOfMemory = 8,    // an allocation failed; no block was returned
  kDetectorFault = 9,  // the detector could not be created, or it failed
};

constexpr std::int32_t kMinSide = 50;  // pixels
constexpr std::int32_t kMaxSide = 4096;

}  // namespace faces

}  // namespace catalogcore

#endif  // CATALOGCORE_ENGINES_FACES_FACE_H_
