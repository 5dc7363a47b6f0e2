// The library's own copy of a picture that the application describes, plain or prepared for analysis.
//
// An image is empty when it is made, described after SetImageData, and filled after a SetImageBuffer
// operation gave IDX_OK. It belongs to one thread at a time.
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
  // Takes over the description alone: the copy holds no pixels.
  CIDXImage(const CIDXImage& other);
  CIDXImage& operator=(const CIDXImage&) = delete;

  // Takes over the description of a picture, not its pixels; the pixels held stay. Returns IDX_OK.
  IDXSTATUS SetImageData(const IDXDSDATA* data);

  // The operations below fill the image from `source`, the rowBytes x height bytes that the description speaks of:
  // - IDX_OK: the image holds its own pixels.
  // - IDXERR_PARAM: `source` is null or the description has no bytes. Nothing changed.
  // - IDXERR_MEMORY: memory could not be allocated, or the size is one that cannot be allocated: rowBytes x height is
  //   negative or overflows 32 bits, or that of the reduced picture does. The description is unchanged.
  // Rows shorter than their pixels and negative sides are copied as the sizes say; nothing is read beyond the bytes.
  //
  // REQUIRES: the image holds no pixels. (If it does, they are released and replaced; `source` may even be they.)

  // The bytes as they are.
  IDXSTATUS SetImageBuffer(const void* source);

  // The bytes through ka1DLUT. Three bytes of a row are taken for each pixel, whatever the depth, as many as
  // there are: the rest of the row (padding, the right half at 48 bits) is 0.
  IDXSTATUS SetImageBufferWithGammaTransfer(const void* source);

  // The picture reduced by the whole number that brings it closest to `targetResolution` from above; an
  // unknown resolution counts as the target. A pixel is the average of a block, byte position by byte
  // position (also of the two bytes of a 16-bit sample), cut to an integer and, if `gamma` is 1, passed
  // through ka1DLUT. Columns and rows that fill no block are dropped. Rows are padded with 0 to a multiple of
  // 4 bytes; width, height, rowBytes, bufferSize and resolution become those of the reduced picture. Where
  // nothing is to be reduced, or a side would be below 50 pixels, or the target is not above 0, it is the
  // tone-curved copy (`gamma` 1) or the plain one.
  IDXSTATUS SetImageBufferWithResolution(const void* source, int targetResolution, int gamma);

  // The value, brought into 0 to 255.
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
