// The library's own copy of a picture that the application describes, plain or prepared for analysis.
//
// An image is empty after construction, described after SetImageData, and filled after a SetImageBuffer operation
// returned IDX_OK. Only one thread at a time may use an image.
#ifndef CATALOGCORE_SCENE_IDX_IMAGE_H_
#define CATALOGCORE_SCENE_IDX_IMAGE_H_

#include <cstdint>

#include "base/owners.h"
#include "catalogcore.h"

namespace catalogcore {

class CIDXImage {
 public:
  using PixelBlock = HeapBlock<std::uint8_t[]>;

  CIDXImage() = default;
  // Copies the description only: the copy holds no pixels.
  CIDXImage(const CIDXImage& other);
  CIDXImage& operator=(const CIDXImage&) = delete;

  // Copies the description of a picture, not its pixels; does not change the pixels held. Returns IDX_OK.
  IDXSTATUS SetImageData(const IDXDSDATA* data);

  // The operations below fill the image from `source`, which holds rowBytes x height bytes:
  // - IDX_OK: the image holds its own pixels.
  // - IDXERR_PARAM: `source` is null or bufferSize is 0. The image is unchanged.
  // - IDXERR_MEMORY: memory cannot be allocated, or the size is invalid: rowBytes x height of the picture or of the
  //   reduced picture is negative or overflows 32 bits. The description is unchanged.
  // Rows shorter than their pixels and negative sides are copied as the sizes say. Nothing is read outside the bytes.
  //
  // REQUIRES: the image holds no pixels. (Otherwise it releases and replaces them; `source` may be these pixels.)

  // Copies the bytes unchanged.
  IDXSTATUS SetImageBuffer(const void* source);

  // Maps the first 3 x width bytes of each row through ka1DLUT, at every depth; a shorter row is mapped to its end. The
  // rest of the row (padding, the right half at 48 bits) is 0.
  IDXSTATUS SetImageBufferWithGammaTransfer(const void* source);

  // Reduces the picture by the largest integer factor that keeps the resolution at or above `targetResolution`. An
  // unknown resolution counts as the target. A pixel is the average of a block, separately for each byte of a pixel
  // (also for the two bytes of a 16-bit sample), truncated to an integer and, if `gamma` is 1, mapped through ka1DLUT.
  // Columns and rows that do not fill a block are dropped. Rows are padded with 0 to a multiple of 4 bytes. width,
  // height, rowBytes, bufferSize and resolution become those of the reduced picture. If the factor is 1, a side would
  // be below 50 pixels, or the target is not above 0, makes the tone-curved copy (`gamma` 1) or the plain copy instead.
  IDXSTATUS SetImageBufferWithResolution(const void* source, int targetResolution, int gamma);

  // The value, clamped to 0 to 255. No code calls it: averages and the tone curve stay within this range.
  static constexpr int Range255(int value) { return value < 0 ? 0 : value > 255 ? 255 : value; }

  PixelBlock pixels;  // bufferSize bytes, or null
  // As in IDXDSDATA.
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::int32_t rowBytes = 0;
  std::int32_t bitsPerPixel = 0;
  std::int32_t resolution = 0;
  std::int32_t fixedScene = 0;
  std::int32_t typeHint = 0;
  std::uint16_t photoHint = 0;
  std::uint16_t photoKind = 0;
  std::int32_t bufferSize = 0;     // rowBytes * height, wrapped to 32 bits
  std::int32_t bytesPerPixel = 0;  // bitsPerPixel / 8

 private:
  IDXSTATUS CheckBytes(const void* source) const;
  IDXSTATUS Reduce(const void* source, int factor, int newResolution, bool gamma);
};

}  // namespace catalogcore

#endif  // CATALOGCORE_SCENE_IDX_IMAGE_H_
