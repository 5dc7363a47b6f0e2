#include "engines/faces/grey_copy.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <vector>

#include "engines/faces/resampling_taps.h"

namespace catalogcore::faces {
namespace {

constexpr double kWorkingArea = 1536.0 * 1152.0;
constexpr double kMaxEnlargement = 4;

constexpr std::size_t kHighByte = std::endian::native == std::endian::little ? 1 : 0;  // of a 16-bit sample

// Sums of weighted bytes in tap units: at most 255 * kTapUnit, which 16 bits hold.
using WeightedRow = std::vector<std::uint16_t>;

// Adds the first of every kBytesPerSample bytes. In blocks of fixed length, and told that the rows do not overlap,
// every compiler turns this into vector instructions.
template <std::size_t kBytesPerSample>
void AddWeighted(const std::uint8_t* __restrict samples, unsigned weight, std::uint16_t* __restrict sums,
                 std::size_t count) {
  constexpr std::size_t kBlock = 16;
  std::size_t i = 0;
  for (; i + kBlock <= count; i += kBlock) {
    for (std::size_t j = i; j < i + kBlock; ++j) {
      sums[j] = static_cast<std::uint16_t>(sums[j] + weight * samples[j * kBytesPerSample]);
    }
  }
  for (; i < count; ++i) sums[i] = static_cast<std::uint16_t>(sums[i] + weight * samples[i * kBytesPerSample]);
}

// The high bytes of the source rows that make up one target row, weighted.
void SumRows(const SourcePicture& source, const Taps& rows, WeightedRow& sums) {
  std::fill(sums.begin(), sums.end(), std::uint16_t{0});
  for (std::size_t i = 0; i < rows.weights.size(); ++i) {
    const std::uint8_t* const row = source.Row(static_cast<std::int32_t>(rows.first + i)).data();
    if (source.bytesPerSample == 1) {
      AddWeighted<1>(row, rows.weights[i], sums.data(), sums.size());
    } else {
      AddWeighted<2>(row + kHighByte, rows.weights[i], sums.data(), sums.size());
    }
  }
}

// In place: pixel x of the result overwrites samples that no later pixel reads.
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

PictureSize WorkingSize(const PictureSize& source) {
  const double scale = std::min(std::sqrt(kWorkingArea / static_cast<double>(source.Area())), kMaxEnlargement);
  return {Scaled(source.width, scale), Scaled(source.height, scale)};
}

void MakeGreyCopy(const SourcePicture& source, const PictureSize& size, std::uint8_t* target) {
  const auto sourceWidth = static_cast<std::size_t>(source.size.width);
  const auto width = static_cast<std::size_t>(size.width);
  const auto height = static_cast<std::size_t>(size.height);
  const ResamplingTaps columns(sourceWidth, width);
  const ResamplingTaps rows(static_cast<std::size_t>(source.size.height), height);
  WeightedRow sums(source.SamplesPerRow());
  for (std::size_t y = 0; y < height; ++y) {
    SumRows(source, rows.At(y), sums);
    if (source.samplesPerPixel == 3) MixSamples(sums, sourceWidth);
    for (std::size_t x = 0; x < width; ++x) *target++ = WeightedMean(sums, columns.At(x));
  }
}

}  // namespace catalogcore::faces
