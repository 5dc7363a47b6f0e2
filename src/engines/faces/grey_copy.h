// The caller's picture, checked, and the grey copy of it in which faces are searched.
#ifndef CATALOGCORE_ENGINES_FACES_GREY_COPY_H_
#define CATALOGCORE_ENGINES_FACES_GREY_COPY_H_

#include <cstddef>
#include <cstdint>
#include <span>

#include "base/pixel_view.h"
#include "engines/faces/face.h"

namespace catalogcore::faces {

struct PictureSize {
  std::int32_t width = 0;
  std::int32_t height = 0;

  std::size_t Area() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
};

struct FaceSource {
  PictureSize size;
  std::size_t samplesPerPixel = 1;  // 1 or 3
  std::size_t bytesPerSample = 1;   // 1 or 2, host byte order
  PixelView pixels;

  std::size_t SamplesPerRow() const { return static_cast<std::size_t>(size.width) * samplesPerPixel; }

  // The samples of row y without the padding.
  std::span<const std::uint8_t> Row(std::size_t y) const { return pixels.Run(y, 0, SamplesPerRow() * bytesPerSample); }
};

// Checks the arguments of Orlo_SetBitmap. Returns kSuccess and fills `source` if they are valid.
FaceResult DescribeSource(std::int32_t bitsPerPixel, std::int32_t width, std::int32_t height,
                          std::int32_t negatedStride, const void* pixels, FaceSource& source);

// The size of the grey copy: the picture's proportions with a longer side of kWorkingSide pixels, but never enlarged
// more than kMaxEnlargement times.
PictureSize WorkingSize(const PictureSize& source);

// Scales the picture to rows x stride of `target`: averages areas where an axis shrinks, interpolates linearly where it
// grows. The grey of a colour pixel is (first + 2 * second + third) / 4, because the order of the samples is unknown.
// Of a 16-bit sample the high byte counts. Throws std::bad_alloc.
void MakeGreyCopy(const FaceSource& source, const MutablePixelView& target);

}  // namespace catalogcore::faces

#endif  // CATALOGCORE_ENGINES_FACES_GREY_COPY_H_
