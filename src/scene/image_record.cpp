#include "scene/image_record.h"

#include <algorithm>

namespace catalogcore {

namespace {

constexpr std::int32_t kSmallestArea = 50;  // pixels on a side of the analysed area
constexpr double kMarginMillimetres = 5.0;  // along the edges, where the scanner's bed may show
constexpr double kMillimetresPerInch = 25.4;

// The margin at each end of `length` pixels: 0 if fewer than kSmallestArea pixels would remain.
std::int32_t Margin(std::int32_t length, std::int32_t margin) {
  return length - std::int64_t{2} * margin >= kSmallestArea ? margin : 0;
}

}  // namespace

ImageRecord::ImageRecord(const CIDXImage& reduced) {
  const std::int32_t bits = reduced.bitsPerPixel;
  const std::int32_t resolution = std::max(reduced.resolution, kRecognizerResolution);
  const auto margin = static_cast<std::int32_t>(resolution * kMarginMillimetres / kMillimetresPerInch);
  const std::int32_t marginX = Margin(reduced.width, margin);
  const std::int32_t marginY = Margin(reduced.height, margin);
  Put<std::uint16_t>(kBrennTag, kBrennRecordTag);
  if (bits == 8 || bits == 16 || bits == 24 || bits == 48) {
    const std::int32_t samples = bits == 8 || bits == 16 ? 1 : 3;
    Put<std::uint16_t>(kBrennSamplesPerPixel, samples);
    Put<std::uint16_t>(kBrennBitsPerSample, bits / samples);
  }
  Put<std::uint16_t>(kBrennFixedTwo, 2);
  Put<std::uint16_t>(kBrennFixedOne, 1);
  Put<std::uint32_t>(kBrennWidth, reduced.width);
  Put<std::uint32_t>(kBrennStride, reduced.rowBytes);
  Put<std::uint32_t>(kBrennHeight, reduced.height);
  Put<std::uint32_t>(kBrennResolutionX, resolution);
  Put<std::uint32_t>(kBrennResolutionY, resolution);
  Put<std::uint32_t>(kBrennMarginX, marginX);
  Put<std::uint32_t>(kBrennMarginY, marginY);
  Put<std::uint32_t>(kBrennAreaWidth, reduced.width - 2 * marginX);
  Put<std::uint32_t>(kBrennAreaHeight, reduced.height - 2 * marginY);
  Put<std::uint16_t>(kBrennFixedSixteenX, 16);
  Put<std::uint16_t>(kBrennFixedSixteenY, 16);
}

}  // namespace catalogcore
