#include "engines/document_type/picture.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
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
  const bool areConstant = Short(record, kBrennFixedTwo) == 2 && Short(record, kBrennFixedOne) == 1 &&
                           Short(record, kBrennFixedSixteenX) == 16 && Short(record, kBrennFixedSixteenY) == 16;
  return areConstant ? Fault::kNone : Fault::kRecordConstants;
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

Fault ReadRecord(const unsigned char* record, CheckedRecord& out) {
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

AnalysedArea::AnalysedArea(const CheckedRecord& record, const void* pixels)
    : pixels_(static_cast<const std::uint8_t*>(pixels), record.height, record.stride),
      top_(record.areaTop),
      width_(record.areaWidth),
      height_(record.areaHeight),
      pixelStep_(record.samplesPerPixel * record.bytesPerSample),
      sampleStep_(record.bytesPerSample),
      hasColour_(record.samplesPerPixel == 3) {
  const std::size_t highByte = std::endian::native == std::endian::little ? sampleStep_ - 1 : 0;
  first_ = record.areaLeft * pixelStep_ + highByte;
  width_ = VisibleWidth();
}

// An unreduced tone-curved copy of a 48-bit picture is 0 on its right half. The last pixel that is not 0 may have lost
// its second and third sample, so the second sample decides. If fewer than kSmallestSide columns remain, as in an
// almost black picture, no column is left out.
std::size_t AnalysedArea::VisibleWidth() const {
  const std::size_t middle = hasColour_ ? sampleStep_ : 0;
  std::size_t visible = 0;
  for (std::size_t y = 0; y < height_ && visible < width_; ++y) {
    const auto row = Row(y);
    std::size_t end = width_;
    while (end > visible && row[(end - 1) * pixelStep_ + middle] == 0) --end;
    visible = end;
  }
  return visible < kSmallestSide ? width_ : visible;
}

namespace {

constexpr std::size_t kLongestSide = 900;
constexpr std::size_t kMostTaps = 4;

// Grey is (first + 2 x second + third) / 4. The order of the samples may be red first or blue first: the formula treats
// the two alike, and green, the second sample in both orders, weighs most. The sum is divided by 4 only when the tone
// curve is undone.
constexpr std::size_t kGreySteps = 4 * 255 + 1;

struct ToneTables {
  std::array<std::uint8_t, kGreySteps> grey;
  std::array<std::uint8_t, 256> sample;
};

// The inverse of the tone curve of gamma 1.8 that the picture went through.
std::uint8_t Even(double share) { return static_cast<std::uint8_t>(std::lround(255.0 * std::pow(share, 1.0 / 1.8))); }

const ToneTables& Tones() {
  static const ToneTables tables = [] {
    ToneTables made{};
    for (std::size_t i = 0; i < kGreySteps; ++i) {
      made.grey[i] = Even(static_cast<double>(i) / static_cast<double>(kGreySteps - 1));
    }
    for (std::size_t i = 0; i < 256; ++i) made.sample[i] = Even(static_cast<double>(i) / 255.0);
    return made;
  }();
  return tables;
}

std::size_t BlockSide(std::size_t width, std::size_t height) {
  const std::size_t wanted = (std::max(width, height) + kLongestSide - 1) / kLongestSide;
  const std::size_t possible = std::min(width, height) / kSmallestSide;
  return std::max<std::size_t>(1, std::min(wanted, possible));
}

// The rows and columns of a block that are read: all of them, or kMostTaps evenly spaced ones.
std::vector<std::size_t> TapOffsets(std::size_t blockSide) {
  const std::size_t count = std::min(blockSide, kMostTaps);
  std::vector<std::size_t> taps(count);
  for (std::size_t i = 0; i < count; ++i) taps[i] = (2 * i + 1) * blockSide / (2 * count);
  return taps;
}

struct SampleSums {
  std::uint32_t first, second, third;
};

// Sums over the pixels read of each block in one row of blocks. A grey pixel counts as three equal samples.
void SumBlocks(const AnalysedArea& area, std::size_t blockRow, std::size_t blockSide,
               const std::vector<std::size_t>& taps, std::vector<SampleSums>& sums) {
  const std::size_t pixelStep = area.PixelStep();
  const std::size_t second = area.HasColour() ? area.SampleStep() : 0;
  const std::size_t third = 2 * second;
  std::fill(sums.begin(), sums.end(), SampleSums{0, 0, 0});
  for (const std::size_t down : taps) {
    const auto row = area.Row(blockRow * blockSide + down);
    for (const std::size_t across : taps) {
      std::size_t at = across * pixelStep;
      for (SampleSums& sum : sums) {
        sum.first += row[at];
        sum.second += row[at + second];
        sum.third += row[at + third];
        at += blockSide * pixelStep;
      }
    }
  }
}

CellColour ColourOf(const SampleSums& sum, std::uint32_t pixels) {
  const auto& even = Tones().sample;
  const int first = even[sum.first / pixels];
  const int second = even[sum.second / pixels];
  const int third = even[sum.third / pixels];
  const auto [low, high] = std::minmax({first, second, third});
  return {static_cast<std::int16_t>(first - third), static_cast<std::int16_t>(2 * second - first - third),
          static_cast<std::uint8_t>(high - low)};
}

// Sums kCellSide rows of blocks into one row of cells.
class CellRow {
 public:
  explicit CellRow(std::size_t cells) : sums_(cells, SampleSums{0, 0, 0}) {}

  void Add(const std::vector<SampleSums>& row) {
    for (std::size_t cell = 0; cell < sums_.size(); ++cell) {
      for (std::size_t i = 0; i < kCellSide; ++i) {
        const SampleSums& block = row[cell * kCellSide + i];
        sums_[cell].first += block.first;
        sums_[cell].second += block.second;
        sums_[cell].third += block.third;
      }
    }
  }

  void MoveTo(std::vector<CellColour>& cells, std::uint32_t pixelsPerCell) {
    for (SampleSums& sum : sums_) {
      cells.push_back(ColourOf(sum, pixelsPerCell));
      sum = {0, 0, 0};
    }
  }

 private:
  std::vector<SampleSums> sums_;
};

}  // namespace

WorkingCopy MakeWorkingCopy(const AnalysedArea& area) {
  const std::size_t blockSide = BlockSide(area.Width(), area.Height());
  const std::vector<std::size_t> taps = TapOffsets(blockSide);
  const auto pixelsPerBlock = static_cast<std::uint32_t>(taps.size() * taps.size());

  WorkingCopy copy;
  copy.width = area.Width() / blockSide;
  copy.height = area.Height() / blockSide;
  copy.grey.resize(copy.width * copy.height);
  CellRow cellRow(area.HasColour() ? copy.width / kCellSide : 0);
  if (area.HasColour()) copy.cells.reserve((copy.width / kCellSide) * (copy.height / kCellSide));

  const auto& evenGrey = Tones().grey;
  const MutablePixelView grey(copy.grey.data(), copy.height, copy.width);
  std::vector<SampleSums> sums(copy.width);
  for (std::size_t y = 0; y < copy.height; ++y) {
    SumBlocks(area, y, blockSide, taps, sums);
    const auto row = grey.Row(y);
    for (std::size_t x = 0; x < copy.width; ++x) {
      row[x] = evenGrey[(sums[x].first + 2 * sums[x].second + sums[x].third) / pixelsPerBlock];
    }
    if (!area.HasColour()) continue;
    cellRow.Add(sums);
    if (y % kCellSide == kCellSide - 1) cellRow.MoveTo(copy.cells, pixelsPerBlock * kCellSide * kCellSide);
  }
  return copy;
}

}  // namespace catalogcore::document_type
