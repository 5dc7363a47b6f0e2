// The picture as the scene detector describes it, checked once and then reached through rows that know their
// end.
#ifndef CATALOGCORE_ENGINES_FACES_SOURCE_PICTURE_H_
#define CATALOGCORE_ENGINES_FACES_SOURCE_PICTURE_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "engines/faces/grey_picture.h"
#include "engines/faces/result_codes.h"

namespace catalogcore::faces {

struct SourcePicture {
  PictureSize size;
  std::size_t samplesPerPixel = 1;  // 1 or 3
  std::size_t bytesPerSample = 1;   // 1 or 2, host byte order
  std::size_t stride = 0;           // bytes from one row to the next, rows running downward
  const std::uint8_t* pixels = nullptr;

  std::size_t SamplesPerRow() const { return static_cast<std::size_t>(size.width) * samplesPerPixel; }

  // The samples of row y without the padding behind them.
  std::span<const std::uint8_t> Row(std::int32_t y) const {
    return {pixels + static_cast<std::size_t>(y) * stride, SamplesPerRow() * bytesPerSample};
  }
};

// Fills `source` from what Orlo_SetBitmap was given, or says what is wrong with it and leaves `source` as it
// was.
Result DescribeSource(std::int32_t bitsPerPixel, std::int32_t width, std::int32_t height, std::int32_t negatedStride,
                      const void* pixels, SourcePicture& source);

}  // namespace catalogcore::faces

#endif  // CATALOGCORE_ENGINES_FACES_SOURCE_PICTURE_H_
