#include "engines/document_type/picture.h"

#include <bit>
#include <cstring>
#include <limits>

#include "scene/brenn.h"

namespace catalogcore::document_type {
namespace {

template <typename Integer>
Integer Field(const unsigned char* record, BrennRecordOffset offset) {
  Integer value;
  std::memcpy(&value, record + offset, sizeof value);
  return value;
}

std::uint16_t Short(const unsigned char* record, BrennRecordOffset offset) {
  return Field<std::uint16_t>(record, offset);
}

std::uint32_t Long(const unsigned char* record, BrennRecordOffset offset) {
  return Field<std::uint32_t>(record, offset);
}

Fault CheckConstants(const unsigned char* record) {
  if (Short(record, kBrennTag) != kBrennRecordTag) return Fault::kRecordTag;
  const bool asEver = Short(record, kBrennFixedTwo) == 2 && Short(record, kBrennFixedOne) == 1 &&
                      Short(record, kBrennFixedSixteenX) == 16 && Short(record, kBrennFixedSixteenY) == 16;
  return asEver ? Fault::kNone : Fault::kRecordConstants;
}

Fault CheckResolution(const unsigned char* record) {
  const std::uint32_t across = Long(record, kBrennResolutionX);
  return across >= 75 && across == Long(record, kBrennResolutionY) ? Fault::kNone : Fault::kResolution;
}

bool IsSide(std::uint64_t pixels) { return pixels > 0 && pixels <= kLargestSide; }

// All values come from 32-bit fields, so that sums and products of two of them fit 64 bits.
bool FitsSide(std::uint64_t start, std::uint64_t length, std::uint64_t side) {
  return length >= kSmallestSide && start + length <= side;
}

}  // namespace

Fault ReadRecord(const unsigned char* record, PictureRecord& out) {
  if (const Fault fault = CheckConstants(record); fault != Fault::kNone) return fault;

  const std::uint16_t samples = Short(record, kBrennSamplesPerPixel);
  if (samples != 1 && samples != 3) return Fault::kSamplesPerPixel;
  const std::uint16_t bits = Short(record, kBrennBitsPerSample);
  if (bits != 8 && bits != 16) return Fault::kBitsPerSample;

  const std::uint64_t width = Long(record, kBrennWidth);
  const std::uint64_t height = Long(record, kBrennHeight);
  const std::uint64_t stride = Long(record, kBrennStride);
  constexpr std::uint64_t kMostBytes = std::numeric_limits<std::int32_t>::max();
  if (!IsSide(width) || !IsSide(height) || stride * height > kMostBytes) return Fault::kPictureSize;
  const std::uint64_t bytesPerSample = bits / 8U;
  if (stride < width * samples * bytesPerSample) return Fault::kStride;
  if (const Fault fault = CheckResolution(record); fault != Fault::kNone) return fault;

  const std::uint64_t left = Long(record, kBrennMarginX);
  const std::uint64_t top = Long(record, kBrennMarginY);
  const std::uint64_t areaWidth = Long(record, kBrennAreaWidth);
  const std::uint64_t areaHeight = Long(record, kBrennAreaHeight);
  if (!FitsSide(left, areaWidth, width) || !FitsSide(top, areaHeight, height)) return Fault::kArea;

  out = {samples, bytesPerSample, width, height, stride, left, top, areaWidth, areaHeight};
  return Fault::kNone;
}

Picture::Picture(const PictureRecord& record, const void* pixels)
    : width_(record.areaWidth),
      height_(record.areaHeight),
      stride_(record.stride),
      pixelStep_(record.samplesPerPixel * record.bytesPerSample),
      sampleStep_(record.bytesPerSample),
      colour_(record.samplesPerPixel == 3) {
  const std::size_t highByte = std::endian::native == std::endian::little ? record.bytesPerSample - 1 : 0;
  first_ =
      static_cast<const std::uint8_t*>(pixels) + record.areaTop * stride_ + record.areaLeft * pixelStep_ + highByte;
  width_ = VisibleWidth();
}

// A tone-curved copy of a picture with three 16-bit samples at full size is empty on its right half. The cut can run
// through a pixel and leave it its first sample alone, so the middle sample tells what is empty. What remains of an
// all but black picture is too little to go by: then everything counts.
std::size_t Picture::VisibleWidth() const {
  const std::size_t middle = colour_ ? sampleStep_ : 0;
  std::size_t visible = 0;
  for (std::size_t y = 0; y < height_ && visible < width_; ++y) {
    const auto row = Row(y);
    std::size_t end = width_;
    while (end > visible && row[(end - 1) * pixelStep_ + middle] == 0) --end;
    visible = end;
  }
  return visible < kSmallestSide ? width_ : visible;
}

}  // namespace catalogcore::document_type
