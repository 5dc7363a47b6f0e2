// What the recognizer answers when it does not decide: one code per fault, 1 to 255, never given another meaning.
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
  kRecordConstants = 13,  // one of the fixed fields (2, 1, 16, 16) holds something else
  kPictureSize = 14,      // a width or height of 0 or beyond kLargestSide, or more bytes than 31 bits can tell
  kStride = 15,           // shorter than a row of pixels
  kResolution = 16,       // below 75 dots per inch, or not the same both ways
  kArea = 17,             // reaches outside the picture, or is smaller than kSmallestSide on a side

  // The parameter block.
  kBlockTooShort = 20,  // has no whole header
  kBlockTag = 21,       // does not start with "SGIPPDEF"
  kBlockSize = 22,      // its own size is not the size handed in
  kBlockVersion = 23,   // a version of the layout that this engine does not know
  kBlockCounts = 24,    // made for other features, or names one that there is not, or the counts do not give the size
  kBlockChecksum = 25,  // damaged
  kBlockNumber = 26,    // holds a number that is not finite, or a scale that is not positive

  kOutOfMemory = 30,
  kUnexpected = 31,
};

}  // namespace catalogcore::document_type

#endif  // CATALOGCORE_ENGINES_DOCUMENT_TYPE_FAULT_H_
