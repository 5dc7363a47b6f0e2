#include "scene/block_average.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <span>
#include <type_traits>
#include <utility>

namespace catalogcore {

// Each row of blocks is processed in strips whose sums fit in the first-level cache. First the rows of a strip are
// added column by column, sixteen bytes at a time at every depth. This leaves one row of column sums. At the usual
// factors of scanners (2, 4 and 8) that row is folded in halves, and one table look-up turns the sum of a block into
// its byte: it replaces the division and the tone curve.

namespace {

using ByteVector [[gnu::vector_size(16)]] = std::uint8_t;
using SumVector [[gnu::vector_size(16)]] = std::uint16_t;
constexpr std::size_t kSumsInVector = sizeof(SumVector) / sizeof(std::uint16_t);

static_assert(std::endian::native == std::endian::little, "bytes are widened and words assembled low byte first");

// The largest number of columns in a strip. Longer strips measured slower: rows and sums evict each other from the
// cache.
constexpr std::size_t kStripColumns = 1024;

// The sum of this many bytes fits in 16 bits: 255 * 257 = 65535.
constexpr std::int32_t kMostRowsInSums = 257;

// The largest factor whose blocks are folded: the sums fit in 16 bits and the table of values in the first-level cache.
constexpr std::int32_t kMostFolded = 8;

// The sums of a strip's columns, and padding that vectors may read and write.
using ColumnSums = std::array<std::uint16_t, kStripColumns + 64>;

template <typename Vector, typename Element>
Vector Load(const Element* from) {
  Vector vector;
  std::memcpy(&vector, from, sizeof vector);
  return vector;
}

template <typename Vector, typename Element>
void Store(const Vector& vector, Element* to) {
  std::memcpy(to, &vector, sizeof vector);
}

SumVector WidenLow(ByteVector bytes) {
  return SumVector(
      __builtin_shufflevector(bytes, ByteVector{}, 0, 16, 1, 17, 2, 18, 3, 19, 4, 20, 5, 21, 6, 22, 7, 23));
}

SumVector WidenHigh(ByteVector bytes) {
  return SumVector(
      __builtin_shufflevector(bytes, ByteVector{}, 8, 24, 9, 25, 10, 26, 11, 27, 12, 28, 13, 29, 14, 30, 15, 31));
}

// `rows` rows of the source from row `top`, and `columns` bytes of each row from byte `first`. The type Rows is an
// integer or, for loops that the compiler unrolls, an integral constant.
template <typename Rows>
struct Strip {
  const PixelView& source;
  std::int32_t top;
  Rows rows;
  std::size_t first;
  std::size_t columns;

  const std::uint8_t* At(std::int32_t y, std::size_t x, std::size_t count) const {
    return source.Run(top + y, first + x, count).data();
  }

  std::uint16_t ColumnSum(std::size_t x) const {
    std::uint16_t sum = 0;
    for (std::int32_t y = 0; y < rows; ++y) sum = static_cast<std::uint16_t>(sum + *At(y, x, 1));
    return sum;
  }
};

// The sum of every column.
template <typename Rows>
void AddRows(const Strip<Rows>& strip, ColumnSums& sums) {
  std::size_t x = 0;
  for (; x + sizeof(ByteVector) <= strip.columns; x += sizeof(ByteVector)) {
    SumVector low{};
    SumVector high{};
    for (std::int32_t y = 0; y < strip.rows; ++y) {
      const auto bytes = Load<ByteVector>(strip.At(y, x, sizeof(ByteVector)));
      low += WidenLow(bytes);
      high += WidenHigh(bytes);
    }
    Store(low, &sums[x]);
    Store(high, &sums[x + kSumsInVector]);
  }
  for (; x < strip.columns; ++x) sums[x] = strip.ColumnSum(x);
}

// The sum of every two columns, for pixels of one byte: includes the first fold. REQUIRES: the number of columns is
// even.
template <typename Rows>
void AddRowsOfPairs(const Strip<Rows>& strip, ColumnSums& sums) {
  std::size_t x = 0;
  for (; x + sizeof(SumVector) <= strip.columns; x += sizeof(SumVector)) {
    SumVector pairs{};
    for (std::int32_t y = 0; y < strip.rows; ++y) {
      const auto bytes = Load<SumVector>(strip.At(y, x, sizeof(SumVector)));
      pairs += (bytes & 255) + (bytes >> 8);
    }
    Store(pairs, &sums[x / 2]);
  }
  for (; x < strip.columns; x += 2) {
    sums[x / 2] = static_cast<std::uint16_t>(strip.ColumnSum(x) + strip.ColumnSum(x + 1));
  }
}

// Adds to each of `count` sums the sum `distance` places after it. The values of sums from `count` on become undefined.
void Fold(ColumnSums& sums, std::size_t count, std::size_t distance) {
  for (std::size_t x = 0; x < count; x += kSumsInVector) {
    Store(Load<SumVector>(&sums[x]) + Load<SumVector>(&sums[x + distance]), &sums[x]);
  }
}

// Prefetches the strip into the cache.
template <typename Rows>
void Fetch(const Strip<Rows>& strip) {
  constexpr std::size_t kCacheLine = 64;
  for (std::int32_t y = 0; y < strip.rows; ++y) {
    for (std::size_t x = 0; x < strip.columns; x += kCacheLine) __builtin_prefetch(strip.At(y, x, 1));
  }
}

// Looks up eight bytes of pixels and assembles them in a word, because eight stores take longer than all the rest. A
// pixel has kPixel bytes; their sums are the first kPixel of the block's kBlock sums.
template <std::size_t kBlock, std::size_t kPixel, std::size_t kFirst, std::size_t... kByte>
std::uint64_t LookUpWord(const std::uint8_t* values, const std::uint16_t* sums, std::index_sequence<kByte...>) {
  constexpr auto kSum = [](std::size_t byte) { return byte / kPixel * kBlock + byte % kPixel; };
  return ((std::uint64_t{values[sums[kSum(kFirst + kByte)]]} << (8 * kByte)) | ...);
}

constexpr std::size_t kBlocksLookedUp = 8;  // at once: one word for each byte of a pixel

template <std::size_t kBlock, std::size_t kPixel, std::size_t... kWord>
void LookUpBlocks(const std::uint8_t* values, const std::uint16_t* sums, std::uint8_t* to,
                  std::index_sequence<kWord...>) {
  constexpr auto kBytes = std::make_index_sequence<8>{};
  (Store(LookUpWord<kBlock, kPixel, 8 * kWord>(values, sums, kBytes), to + 8 * kWord), ...);
}

// Looks up all blocks of a strip. REQUIRES: `pixels` holds whole pixels.
template <std::size_t kBlock, std::size_t kPixel>
void LookUpStrip(const std::uint8_t* values, const ColumnSums& sums, std::span<std::uint8_t> pixels) {
  const std::uint16_t* sum = sums.data();
  std::uint8_t* to = pixels.data();
  std::size_t left = pixels.size() / kPixel;
  for (; left >= kBlocksLookedUp; left -= kBlocksLookedUp) {
    LookUpBlocks<kBlock, kPixel>(values, sum, to, std::make_index_sequence<kPixel>{});
    sum += kBlocksLookedUp * kBlock;
    to += kBlocksLookedUp * kPixel;
  }
  for (; left > 0; --left, sum += kBlock) {
    for (std::size_t b = 0; b < kPixel; ++b) *to++ = values[sum[b]];
  }
}

// The output byte for every possible sum of a block of kArea pixels.
template <std::size_t kArea>
std::array<std::uint8_t, 255 * kArea + 1> ValuesOfSums(const ToneTable& tones) {
  std::array<std::uint8_t, 255 * kArea + 1> values;
  for (std::size_t sum = 0; sum < values.size(); ++sum) values[sum] = tones[sum / kArea];
  return values;
}

template <std::int32_t kFactor, std::int32_t kBytesPerPixel>
void AverageFolded(const PixelView& source, const BlockGrid& grid, const ToneTable& tones,
                   const MutablePixelView& target) {
  static_assert(kFactor <= kMostFolded && std::has_single_bit(static_cast<unsigned>(kFactor)));
  constexpr std::size_t kPixel = kBytesPerPixel;
  constexpr std::size_t kBlock = kFactor * kPixel;
  constexpr bool kPairs = kPixel == 1;
  // Here the look-ups take about as long as loading the next strip, so the two overlap. In the other cases prefetching
  // measured no faster, or slower.
  constexpr bool kLooksUpLong = kPairs && kFactor == 2;
  constexpr std::size_t kBlockSums = kPairs ? kBlock / 2 : kBlock;
  constexpr std::size_t kStripBlocks = kStripColumns / kBlock / kBlocksLookedUp * kBlocksLookedUp;
  static_assert(kStripBlocks > 0);
  constexpr std::integral_constant<std::int32_t, kFactor> kRows{};

  const auto values = ValuesOfSums<kFactor * kFactor>(tones);
  const auto columns = static_cast<std::size_t>(grid.columns);
  ColumnSums sums{};
  for (std::int32_t y = 0; y < target.Rows(); ++y) {
    for (std::size_t x = 0; x < columns; x += kStripBlocks) {
      const std::size_t blocks = std::min(kStripBlocks, columns - x);
      const Strip<decltype(kRows)> strip{source, y * kFactor, kRows, x * kBlock, blocks * kBlock};
      if constexpr (kPairs) {
        AddRowsOfPairs(strip, sums);
      } else {
        AddRows(strip, sums);
      }
      for (std::size_t distance = kPixel; distance < kBlockSums; distance *= 2) {
        Fold(sums, blocks * kBlockSums, distance);
      }
      if (kLooksUpLong && y + 1 < target.Rows()) {
        Fetch(Strip<decltype(kRows)>{source, strip.top + kRows, kRows, strip.first, strip.columns});
      }
      LookUpStrip<kBlockSums, kPixel>(values.data(), sums, target.Run(y, x * kPixel, blocks * kPixel));
    }
  }
}

// For any factor and depth at which a block fits in a strip.
void AverageStrips(const PixelView& source, const BlockGrid& grid, const ToneTable& tones,
                   const MutablePixelView& target) {
  const auto pixel = static_cast<std::size_t>(grid.bytesPerPixel);
  const auto columns = static_cast<std::size_t>(grid.columns);
  const auto area = static_cast<std::uint32_t>(grid.factor * grid.factor);
  const std::size_t block = static_cast<std::size_t>(grid.factor) * pixel;
  const std::size_t stripBlocks = kStripColumns / block;
  ColumnSums sums{};
  for (std::int32_t y = 0; y < target.Rows(); ++y) {
    for (std::size_t x = 0; x < columns; x += stripBlocks) {
      const std::size_t blocks = std::min(stripBlocks, columns - x);
      AddRows(Strip<std::int32_t>{source, y * grid.factor, grid.factor, x * block, blocks * block}, sums);
      std::uint8_t* to = target.Run(y, x * pixel, blocks * pixel).data();
      for (std::size_t i = 0; i < blocks; ++i) {
        for (std::size_t b = 0; b < pixel; ++b) {
          std::uint32_t sum = 0;
          for (std::size_t at = b; at < block; at += pixel) sum += sums[i * block + at];
          *to++ = tones[sum / area];
        }
      }
    }
  }
}

// For any factor and depth.
void AverageOneByOne(const PixelView& source, const BlockGrid& grid, const ToneTable& tones,
                     const MutablePixelView& target) {
  const auto pixel = static_cast<std::size_t>(grid.bytesPerPixel);
  const auto area = static_cast<std::uint32_t>(grid.factor) * static_cast<std::uint32_t>(grid.factor);
  const std::size_t block = static_cast<std::size_t>(grid.factor) * pixel;
  for (std::int32_t y = 0; y < target.Rows(); ++y) {
    const auto to = target.Run(y, 0, static_cast<std::size_t>(grid.columns) * pixel);
    for (std::size_t i = 0; i < to.size(); ++i) {
      std::uint32_t sum = 0;
      for (std::int32_t dy = 0; dy < grid.factor; ++dy) {
        const auto run = source.Run(y * grid.factor + dy, i / pixel * block, block);
        for (std::size_t at = i % pixel; at < block; at += pixel) sum += run[at];
      }
      to[i] = tones[sum / area];
    }
  }
}

using Average = void (*)(const PixelView&, const BlockGrid&, const ToneTable&, const MutablePixelView&);

template <std::int32_t kBytesPerPixel>
Average FoldedAverage(std::int32_t factor) {
  switch (factor) {
    case 2:
      return AverageFolded<2, kBytesPerPixel>;
    case 4:
      return AverageFolded<4, kBytesPerPixel>;
    case 8:
      return AverageFolded<8, kBytesPerPixel>;
    default:
      return nullptr;
  }
}

// The folded average for this factor and depth, or null.
Average FoldedAverage(const BlockGrid& grid) {
  switch (grid.bytesPerPixel) {
    case 1:
      return FoldedAverage<1>(grid.factor);
    case 2:
      return FoldedAverage<2>(grid.factor);
    case 3:
      return FoldedAverage<3>(grid.factor);
    case 6:
      return FoldedAverage<6>(grid.factor);
    default:
      return nullptr;
  }
}

Average ChooseAverage(const BlockGrid& grid) {
  if (const Average folded = FoldedAverage(grid)) return folded;
  const std::int64_t block = std::int64_t{grid.factor} * grid.bytesPerPixel;
  const bool fits = grid.factor <= kMostRowsInSums && block <= std::int64_t{kStripColumns};
  return fits ? AverageStrips : AverageOneByOne;
}

void ClearPadding(const MutablePixelView& target, std::size_t used) {
  for (std::int32_t y = 0; y < target.Rows(); ++y) std::ranges::fill(target.Row(y).subspan(used), std::uint8_t{0});
}

}  // namespace

void AverageBlocks(const PixelView& source, const BlockGrid& grid, const ToneTable& tones,
                   const MutablePixelView& target) {
  ClearPadding(target, static_cast<std::size_t>(grid.columns) * static_cast<std::size_t>(grid.bytesPerPixel));
  if (grid.bytesPerPixel > 0) ChooseAverage(grid)(source, grid, tones, target);
}

}  // namespace catalogcore
