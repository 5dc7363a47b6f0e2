#include "engines/faces/source_picture.h"

#include <limits>

namespace catalogcore::faces {
namespace {

bool IsSideInRange(std::int32_t side) { return side >= kMinSide && side <= kMaxSide; }

bool IsKnownDepth(std::int32_t bits) { return bits == 8 || bits == 16 || bits == 24 || bits == 48; }

}  // namespace

Result DescribeSource(std::int32_t bitsPerPixel, std::int32_t width, std::int32_t height, std::int32_t negatedStride,
                      const void* pixels, SourcePicture& source) {
  if (!pixels) return Result::kNoPixels;
  if (!IsKnownDepth(bitsPerPixel)) return Result::kBadDepth;
  if (!IsSideInRange(width) || !IsSideInRange(height)) return Result::kBadSize;
  // In 64 bits, since the smallest 32-bit stride has no opposite of its own width.
  const std::int64_t stride = -std::int64_t{negatedStride};
  if (stride < std::int64_t{width} * (bitsPerPixel / 8)) return Result::kBadStride;
  if (stride * height > std::numeric_limits<std::int32_t>::max()) return Result::kBadStride;

  source.size = {width, height};
  source.samplesPerPixel = bitsPerPixel == 24 || bitsPerPixel == 48 ? 3 : 1;
  source.bytesPerSample = bitsPerPixel == 16 || bitsPerPixel == 48 ? 2 : 1;
  source.stride = static_cast<std::size_t>(stride);
  source.pixels = static_cast<const std::uint8_t*>(pixels);
  return Result::kSuccess;
}

}  // namespace catalogcore::faces
