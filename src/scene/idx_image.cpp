#include "scene/idx_image.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <numeric>
#include <span>
#include <utility>

#include "base/pixel_view.h"
#include "platform/large_block.h"
#include "scene/block_average.h"
#include "scene/tone_curve.h"

namespace catalogcore {

namespace {

// A reduced picture has at least this many pixels on either side.
constexpr std::int32_t kShortestReducedSide = 50;

// The largest copy of source rows that AverageShortRows makes for one row of the reduced picture. Pictures within the
// detector's limits need at most 3 MB, up to a depth of 64 bits.
constexpr std::int64_t kLargestBand = std::int64_t{1} << 22;

CIDXImage::PixelBlock AllocateBlock(std::int64_t size) {
  // At least one byte, so that null always means that the allocation failed.
  const auto bytes = static_cast<std::size_t>(std::max<std::int64_t>(size, 1));
  CIDXImage::PixelBlock block(static_cast<std::uint8_t*>(std::malloc(bytes)));
  AdviseLargeBlock(block.get(), bytes);
  return block;
}

ToneTable Unchanged() {
  ToneTable tones;
  std::iota(tones.begin(), tones.end(), std::uint8_t{0});
  return tones;
}

// Maps the first `count` bytes of every row through the tone curve and sets the rest to 0.
void CurveRows(const PixelView& source, std::size_t count, const MutablePixelView& target) {
  for (std::int32_t y = 0; y < source.Rows(); ++y) {
    const auto from = source.Row(y).first(count);
    const auto to = target.Row(y);
    std::transform(from.begin(), from.end(), to.begin(), [](std::uint8_t byte) { return ka1DLUT[byte]; });
    std::ranges::fill(to.subspan(count), std::uint8_t{0});
  }
}

// Averages a picture whose rows are shorter than their pixels. The pixels of a row continue in the rows below; bytes
// after the source's `size` bytes count as 0. Returns false if memory cannot be allocated.
bool AverageShortRows(const std::uint8_t* source, std::int64_t size, std::int64_t stride, const BlockGrid& grid,
                      const ToneTable& tones, const MutablePixelView& target) {
  const std::int64_t wanted = std::int64_t{grid.columns} * grid.factor * grid.bytesPerPixel;
  if (wanted > kLargestBand / grid.factor) return false;
  const CIDXImage::PixelBlock band = AllocateBlock(wanted * grid.factor);
  if (!band) return false;
  for (std::int32_t y = 0; y < target.Rows(); ++y) {
    for (std::int32_t dy = 0; dy < grid.factor; ++dy) {
      const std::int64_t first = (std::int64_t{y} * grid.factor + dy) * stride;
      const std::int64_t given = std::clamp<std::int64_t>(size - first, 0, wanted);
      std::uint8_t* const row = band.get() + dy * wanted;
      std::memcpy(row, source + first, static_cast<std::size_t>(given));
      std::memset(row + given, 0, static_cast<std::size_t>(wanted - given));
    }
    const std::span<std::uint8_t> row = target.Row(y);
    AverageBlocks({band.get(), grid.factor, static_cast<std::int32_t>(wanted)}, grid, tones,
                  {row.data(), 1, static_cast<std::int32_t>(row.size())});
  }
  return true;
}

}  // namespace

CIDXImage::CIDXImage(const CIDXImage& other)
    : width(other.width),
      height(other.height),
      rowBytes(other.rowBytes),
      bitsPerPixel(other.bitsPerPixel),
      resolution(other.resolution),
      fixedScene(other.fixedScene),
      typeHint(other.typeHint),
      photoHint(other.photoHint),
      photoKind(other.photoKind),
      bufferSize(other.bufferSize),
      bytesPerPixel(other.bytesPerPixel) {}

IDXSTATUS CIDXImage::SetImageData(const IDXDSDATA* data) {
  width = data->width;
  height = data->height;
  rowBytes = data->rowBytes;
  bitsPerPixel = data->bitsPerPixel;
  resolution = data->resolution;
  fixedScene = data->fixedScene;
  typeHint = data->typeHint;
  photoHint = data->photoHint;
  photoKind = data->photoKind;
  bufferSize = static_cast<std::int32_t>(static_cast<std::uint32_t>(rowBytes) * static_cast<std::uint32_t>(height));
  bytesPerPixel = bitsPerPixel / 8;
  return IDX_OK;
}

// Whether bytes of the described size can be copied: IDX_OK, or the status to return.
IDXSTATUS CIDXImage::CheckBytes(const void* source) const {
  if (!source || bufferSize == 0) return IDXERR_PARAM;
  const bool isSize = bufferSize > 0 && std::int64_t{rowBytes} * height == bufferSize;
  return isSize ? IDX_OK : IDXERR_MEMORY;
}

IDXSTATUS CIDXImage::SetImageBuffer(const void* source) {
  if (const IDXSTATUS status = CheckBytes(source); status != IDX_OK) return status;
  PixelBlock copy = AllocateBlock(bufferSize);
  if (copy) std::memcpy(copy.get(), source, static_cast<std::size_t>(bufferSize));
  pixels = std::move(copy);
  return pixels ? IDX_OK : IDXERR_MEMORY;
}

IDXSTATUS CIDXImage::SetImageBufferWithGammaTransfer(const void* source) {
  if (const IDXSTATUS status = CheckBytes(source); status != IDX_OK) return status;
  PixelBlock copy = AllocateBlock(bufferSize);
  if (copy && height > 0) {
    // At 8 and 16 bits a pixel, three bytes a pixel reach into the rows below. These bytes get the same values from
    // their own row, so each row stops at its own end.
    const auto count = static_cast<std::size_t>(std::clamp<std::int64_t>(std::int64_t{3} * width, 0, rowBytes));
    CurveRows({static_cast<const std::uint8_t*>(source), height, rowBytes}, count, {copy.get(), height, rowBytes});
  } else if (copy) {
    std::memset(copy.get(), 0, static_cast<std::size_t>(bufferSize));  // height and stride are negative: no rows
  }
  pixels = std::move(copy);
  return pixels ? IDX_OK : IDXERR_MEMORY;
}

IDXSTATUS CIDXImage::SetImageBufferWithResolution(const void* source, int targetResolution, int gamma) {
  if (const IDXSTATUS status = CheckBytes(source); status != IDX_OK) return status;
  const std::int32_t sourceResolution = resolution > 0 ? resolution : targetResolution;
  const std::int32_t factor = targetResolution > 0 ? sourceResolution / targetResolution : 1;
  if (factor > 1 && std::min(width, height) / factor >= kShortestReducedSide) {
    return Reduce(source, factor, sourceResolution / factor, gamma == 1);
  }
  return gamma == 1 ? SetImageBufferWithGammaTransfer(source) : SetImageBuffer(source);
}

IDXSTATUS CIDXImage::Reduce(const void* source, std::int32_t factor, std::int32_t newResolution, bool curved) {
  const std::int32_t newWidth = width / factor;
  const std::int32_t newHeight = height / factor;
  const std::int64_t newRowBytes = ((std::int64_t{newWidth} * bitsPerPixel + 31) & ~std::int64_t{31}) / 8;
  // Divides instead of multiplying: at a depth near 2^31 the product may overflow 64 bits.
  if (newRowBytes < 0 || newRowBytes > std::numeric_limits<std::int32_t>::max() / newHeight) return IDXERR_MEMORY;
  const std::int64_t newSize = newRowBytes * newHeight;
  PixelBlock reduced = AllocateBlock(newSize);
  if (!reduced) return IDXERR_MEMORY;
  const BlockGrid grid = {newWidth, factor, bytesPerPixel};
  const ToneTable tones = curved ? ka1DLUT : Unchanged();
  const auto* const bytes = static_cast<const std::uint8_t*>(source);
  const MutablePixelView target(reduced.get(), newHeight, static_cast<std::int32_t>(newRowBytes));
  if (std::int64_t{newWidth} * factor * bytesPerPixel <= rowBytes) {
    AverageBlocks({bytes, height, rowBytes}, grid, tones, target);
  } else if (!AverageShortRows(bytes, bufferSize, rowBytes, grid, tones, target)) {
    return IDXERR_MEMORY;
  }
  pixels = std::move(reduced);
  width = newWidth;
  height = newHeight;
  rowBytes = static_cast<std::int32_t>(newRowBytes);
  bufferSize = static_cast<std::int32_t>(newSize);
  resolution = newResolution;
  return IDX_OK;
}

}  // namespace catalogcore
