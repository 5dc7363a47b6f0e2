// The recognizer's failure codes, 1 to 255. A code never changes its meaning.
#ifndef CATALOGCORE_ENGINES_DOCUMENT_TYPE_FAULT_H_
#define CATALOGCORE_ENGINES_DOCUMENT_TYPE_FAULT_H_

#include <cstdint>

namespace catalogcore::document_type {

enum class Fault : std::int32_t {
  kNone = 0,

  // The call.
  kNullRecord = 1,
  kNullPixels = 2,
  kNullResult = 3,
  kNullParameters = 4,

  // The image record.
  kRecordTag = 10,        // not kBrennRecordTag
  kSamplesPerPixel = 11,  // neither 1 nor 3
  kBitsPerSample = 12,    // neither 8 nor 16
  kRecordConstants = 13,  // a constant field (2, 1, 16, 16) has another value
  kPictureSize = 14,      // width or height is 0 or above kLargestSide, or the pixels take more than 2^31 - 1 bytes
  kStride = 15,           // shorter than a row of pixels
  kResolution = 16,       // below 75 dots per inch, or different across and down
  kArea = 17,             // reaches outside the picture, or has a side below kSmallestSide

  // The parameter block.
  kBlockTooShort = 20,  // shorter than its header
  kBlockTag = 21,       // does not start with "SGIPPDEF"
  kBlockSize = 22,      // the size in the header is not the size of the block
  kBlockVersion = 23,   // unknown version of the layout
  kBlockCounts = 24,    // the number of features is wrong, a feature is unknown, or the counts do not match the size
  kBlockChecksum = 25,  // the check sum does not match
  kBlockNumber = 26,    // a number is not finite, or a scale is not above 0

  kOutOfMemory = 30,
  kUnexpected = 31,
};

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_FAULT_H_
