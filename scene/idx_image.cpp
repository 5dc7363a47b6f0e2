#include "scene/idx_image.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <limits>
#include <numeric>

#include "platform/large_block.h"
#include "scene/block_average.h"
#include "scene/pixel_view.h"
#include "scene/tone_curve.h"

namespace {

// A reduced picture has at least this many pixels on either side.
constexpr std::int32_t kShortestReducedSide = 50;

CIDXImage::PixelBlock AllocateBlock(std::int64_t size) {
  // One byte where none is asked for, so that null always means that there was no memory.
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

// The first `count` bytes of every row through the curve, 0 in the rest.
void CurveRows(const PixelView& source, std::size_t count, const MutablePixelView& target) {
  for (std::int32_t y = 0; y < source.Rows(); ++y) {
    const auto from = source.Row(y).first(count);
    const auto to = target.Row(y);
    std::transform(from.begin(), from.end(), to.begin(), [](std::uint8_t byte) { return ka1DLUT[byte]; });
    std::ranges::fill(to.subspan(count), std::uint8_t{0});
  }
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

// Whether rowBytes x height bytes can be, and hold every byte of every pixel. The depth itself may be
// anything.
bool CIDXImage::DescribesBytes() const {
  return width >= 0 && height > 0 && rowBytes > 0 && bitsPerPixel >= 0 &&
         std::int64_t{rowBytes} * height == bufferSize && std::int64_t{width} * bytesPerPixel <= rowBytes;
}

IDXSTATUS CIDXImage::SetImageBuffer(const void* source) {
  if (!source || !DescribesBytes()) return IDXERR_PARAM;
  PixelBlock copy = AllocateBlock(bufferSize);
  if (copy) std::memcpy(copy.get(), source, static_cast<std::size_t>(bufferSize));
  pixels = std::move(copy);
  return pixels ? IDX_OK : IDXERR_MEMORY;
}

IDXSTATUS CIDXImage::SetImageBufferWithGammaTransfer(const void* source) {
  if (!source || !DescribesBytes()) return IDXERR_PARAM;
  PixelBlock copy = AllocateBlock(bufferSize);
  if (copy) {
    // At 8 and 16 bits a pixel three bytes a pixel run on into the rows below, where each byte gets the value
    // that its own row gives it; so every row may end at its own end.
    const auto count = static_cast<std::size_t>(std::min<std::int64_t>(std::int64_t{3} * width, rowBytes));
    CurveRows({static_cast<const std::uint8_t*>(source), height, rowBytes}, count, {copy.get(), height, rowBytes});
  }
  pixels = std::move(copy);
  return pixels ? IDX_OK : IDXERR_MEMORY;
}

IDXSTATUS CIDXImage::SetImageBufferWithResolution(const void* source, int targetResolution, int gamma) {
  if (!source || !DescribesBytes()) return IDXERR_PARAM;
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
  // A depth below 8 bits has no bytes to average, but its reduced picture may still be too large, or
  // negative.
  const std::int64_t newRowBytes = ((std::int64_t{newWidth} * bitsPerPixel + 31) & ~std::int64_t{31}) / 8;
  const std::int64_t newSize = newRowBytes * newHeight;
  if (newSize < 0 || newSize > std::numeric_limits<std::int32_t>::max()) return IDXERR_PARAM;

  PixelBlock reduced = AllocateBlock(newSize);
  pixels.swap(reduced);
  if (!pixels) return IDXERR_MEMORY;
  AverageBlocks({static_cast<const std::uint8_t*>(source), height, rowBytes}, {newWidth, factor, bytesPerPixel},
                curved ? ka1DLUT : Unchanged(), {pixels.get(), newHeight, static_cast<std::int32_t>(newRowBytes)});
  width = newWidth;
  height = newHeight;
  rowBytes = static_cast<std::int32_t>(newRowBytes);
  bufferSize = static_cast<std::int32_t>(newSize);
  resolution = newResolution;
  return IDX_OK;
}
