// What the engine's operations return: 0 for success, else one of these.
#ifndef CATALOGCORE_ENGINES_FACES_RESULT_CODES_H_
#define CATALOGCORE_ENGINES_FACES_RESULT_CODES_H_

#include <cstdint>

namespace catalogcore::faces {

enum class Result : std::int32_t {
  kSuccess = 0,
  kNoContext = 1,      // the context pointer is null
  kNoPixels = 2,       // the pixel pointer is null
  kBadDepth = 3,       // bits per pixel other than 8, 16, 24 and 48
  kBadSize = 4,        // width or height below kMinSide or above kMaxSide
  kBadStride = 5,      // not negative, shorter than a row, or the rows together beyond 2^31 - 1 bytes
  kNoFaceList = 6,     // the list pointer is null
  kNoPicture = 7,      // the context holds no picture
  kOutOfMemory = 8,    // an allocation failed; nothing was handed out
  kDetectorFault = 9,  // the detector could not be made, or gave up
};

constexpr std::int32_t kMinSide = 50;  // pixels
constexpr std::int32_t kMaxSide = 4096;

}  // namespace catalogcore::faces

#endif  // CATALOGCORE_ENGINES_FACES_RESULT_CODES_H_
