#include "engines/faces/grey_copy.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <limits>
#include <vector>

namespace catalogcore::faces {
namespace {

bool IsSideInRange(std::int32_t side) { return side >= kMinSide && side <= kMaxSide; }

bool IsKnownDepth(std::int32_t bits) { return bits == 8 || bits == 16 || bits == 24 || bits == 48; }

constexpr unsigned kTapUnit = 256;  // the sum of the weights of one target position

struct Taps {
  std::size_t first;                       // the source position of the first weight
  std::span<const std::uint16_t> weights;  // at least one
};

// The source positions and weights of each target position along one axis: the area that a target pixel covers where
// the axis shrinks, linear interpolation where it grows.
class ResamplingTaps {
 public:
  // REQUIRES: both lengths are positive.
  ResamplingTaps(std::size_t sourceLength, std::size_t targetLength);

  Taps At(std::size_t target) const {
    const std::size_t begin = begins_[target];
    return {firsts_[target], {weights_.data() + begin, begins_[target + 1] - begin}};
  }

 private:
  void AddArea(double begin, double end, std::size_t sourceLength);
  void AddLinear(double centre, std::size_t sourceLength);

  std::vector<std::size_t> firsts_;
  std::vector<std::size_t> begins_;  // into weights_, one more than there are target positions
  std::vector<std::uint16_t> weights_;
};

std::uint16_t InTapUnits(double share) { return static_cast<std::uint16_t>(std::lround(share * kTapUnit)); }

ResamplingTaps::ResamplingTaps(std::size_t sourceLength, std::size_t targetLength) {
  const double step = static_cast<double>(sourceLength) / static_cast<double>(targetLength);
  firsts_.reserve(targetLength);
  begins_.reserve(targetLength + 1);
  begins_.push_back(0);
  for (std::size_t target = 0; target < targetLength; ++target) {
    const double begin = static_cast<double>(target) * step;
    if (step > 1) {
      AddArea(begin, begin + step, sourceLength);
    } else {
      AddLinear(begin + step / 2, sourceLength);
    }
    begins_.push_back(weights_.size());
  }
}

// Rounds the running sum rather than each weight, so that the weights add up whatever the step.
void ResamplingTaps::AddArea(double begin, double end, std::size_t sourceLength) {
  const auto first = std::min(static_cast<std::size_t>(begin), sourceLength - 1);
  const auto last = std::clamp(static_cast<std::size_t>(std::ceil(end)), first + 1, sourceLength);
  firsts_.push_back(first);
  std::uint16_t sum = 0;
  for (std::size_t source = first; source < last; ++source) {
    const double covered = std::min(end, static_cast<double>(source + 1)) - begin;
    const std::uint16_t upToHere = source + 1 == last ? kTapUnit : InTapUnits(covered / (end - begin));
    weights_.push_back(static_cast<std::uint16_t>(upToHere - sum));
    sum = upToHere;
  }
}

void ResamplingTaps::AddLinear(double centre, std::size_t sourceLength) {
  const double position = std::clamp(centre - 0.5, 0.0, static_cast<double>(sourceLength - 1));
  const auto first = static_cast<std::size_t>(position);
  firsts_.push_back(first);
  const std::uint16_t second = InTapUnits(position - static_cast<double>(first));
  weights_.push_back(static_cast<std::uint16_t>(kTapUnit - second));
  if (second > 0) weights_.push_back(second);
}

constexpr std::int32_t kWorkingSide = 512;
constexpr double kMaxEnlargement = 3;

constexpr std::size_t kHighByte = std::endian::native == std::endian::little ? 1 : 0;  // of a 16-bit sample

// Sums of weighted bytes in tap units: at most 255 * kTapUnit, which 16 bits hold.
using WeightedRow = std::vector<std::uint16_t>;

constexpr std::size_t kRowsTogether = 4;

struct WeightedSource {
  const std::uint8_t* samples = nullptr;
  unsigned weight = 0;
};

// Adds the first of every kBytesPerSample bytes of four rows. Blocks of fixed length and __restrict let GCC and Clang
// vectorise the loop.
template <std::size_t kBytesPerSample>
void AddWeighted(const std::array<WeightedSource, kRowsTogether>& rows, std::uint16_t* __restrict sums,
                 std::size_t count) {
  const WeightedSource a = rows[0], b = rows[1], c = rows[2], d = rows[3];  // copies, which stay in registers
  const auto add = [&](std::size_t i) {
    const std::size_t at = i * kBytesPerSample;
    sums[i] = static_cast<std::uint16_t>(sums[i] + a.weight * a.samples[at] + b.weight * b.samples[at] +
                                         c.weight * c.samples[at] + d.weight * d.samples[at]);
  };
  constexpr std::size_t kBlock = 16;
  std::size_t i = 0;
  for (; i + kBlock <= count; i += kBlock) {
    for (std::size_t j = i; j < i + kBlock; ++j) add(j);
  }
  for (; i < count; ++i) add(i);
}

// The weighted sum of the high bytes of the source rows of one target row.
void SumRows(const FaceSource& source, const Taps& rows, WeightedRow& sums) {
  std::fill(sums.begin(), sums.end(), std::uint16_t{0});
  for (std::size_t i = 0; i < rows.weights.size(); i += kRowsTogether) {
    std::array<WeightedSource, kRowsTogether> together;
    for (std::size_t k = 0; k < kRowsTogether; ++k) {
      const bool isTap = i + k < rows.weights.size();
      const std::uint8_t* const samples = source.Row(rows.first + (isTap ? i + k : i)).data();
      together[k] = {source.bytesPerSample == 1 ? samples : samples + kHighByte, isTap ? rows.weights[i + k] : 0U};
    }
    if (source.bytesPerSample == 1) {
      AddWeighted<1>(together, sums.data(), sums.size());
    } else {
      AddWeighted<2>(together, sums.data(), sums.size());
    }
  }
}

// Works in place: pixel x of the result overwrites samples that no later pixel reads.
void MixSamples(WeightedRow& row, std::size_t width) {
  for (std::size_t x = 0; x < width; ++x) {
    const unsigned sum = row[3 * x] + 2U * row[3 * x + 1] + row[3 * x + 2];
    row[x] = static_cast<std::uint16_t>((sum + 2) / 4);
  }
}

std::uint8_t WeightedMean(const WeightedRow& row, const Taps& columns) {
  std::uint32_t sum = kTapUnit * kTapUnit / 2;
  for (std::size_t i = 0; i < columns.weights.size(); ++i) {
    sum += std::uint32_t{row[columns.first + i]} * columns.weights[i];
  }
  return static_cast<std::uint8_t>(sum / (kTapUnit * kTapUnit));
}

std::int32_t Scaled(std::int32_t side, double scale) {
  return std::max(1, static_cast<std::int32_t>(std::lround(side * scale)));
}

}  // namespace

FaceResult DescribeSource(std::int32_t bitsPerPixel, std::int32_t width, std::int32_t height,
                          std::int32_t negatedStride, const void* pixels, FaceSource& source) {
  if (!pixels) return FaceResult::kNoPixels;
  if (!IsKnownDepth(bitsPerPixel)) return FaceResult::kBadDepth;
  if (!IsSideInRange(width) || !IsSideInRange(height)) return FaceResult::kBadSize;
  // In 64 bits, because the negative of the smallest 32-bit stride does not fit in 32 bits.
  const std::int64_t stride = -std::int64_t{negatedStride};
  if (stride < std::int64_t{width} * (bitsPerPixel / 8)) return FaceResult::kBadStride;
  if (stride * height > std::numeric_limits<std::int32_t>::max()) return FaceResult::kBadStride;

  source.size = {width, height};
  source.samplesPerPixel = bitsPerPixel == 24 || bitsPerPixel == 48 ? 3 : 1;
  source.bytesPerSample = bitsPerPixel == 16 || bitsPerPixel == 48 ? 2 : 1;
  source.pixels = {static_cast<const std::uint8_t*>(pixels), height, stride};
  return FaceResult::kSuccess;
}

PictureSize WorkingSize(const PictureSize& source) {
  const double scale =
      std::min(kWorkingSide / static_cast<double>(std::max(source.width, source.height)), kMaxEnlargement);
  return {Scaled(source.width, scale), Scaled(source.height, scale)};
}

void MakeGreyCopy(const FaceSource& source, const MutablePixelView& target) {
  const auto sourceWidth = static_cast<std::size_t>(source.size.width);
  const ResamplingTaps columns(sourceWidth, static_cast<std::size_t>(target.Stride()));
  const ResamplingTaps rows(static_cast<std::size_t>(source.size.height), static_cast<std::size_t>(target.Rows()));
  WeightedRow sums(source.SamplesPerRow());
  for (std::int32_t y = 0; y < target.Rows(); ++y) {
    SumRows(source, rows.At(static_cast<std::size_t>(y)), sums);
    if (source.samplesPerPixel == 3) MixSamples(sums, sourceWidth);
    const auto row = target.Row(y);
    for (std::size_t x = 0; x < row.size(); ++x) row[x] = WeightedMean(sums, columns.At(x));
  }
}

}  // namespace catalogcore::faces
