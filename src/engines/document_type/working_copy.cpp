#include "engines/document_type/working_copy.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace catalogcore::document_type {
namespace {

constexpr std::size_t kLongestSide = 900;
constexpr std::size_t kMostTaps = 4;

// Grey is (first + 2 x second + third) / 4: symmetric in the outer samples and close to brightness, as green is the
// middle one in either order. It is kept times four until the tone curve is undone.
constexpr std::size_t kGreySteps = 4 * 255 + 1;

struct ToneTables {
  std::array<std::uint8_t, kGreySteps> grey;
  std::array<std::uint8_t, 256> sample;
};

// The picture comes through a tone curve of gamma 1.8; its inverse gives back even steps.
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

// Where in a block pixels are read: all places, or kMostTaps evenly spaced ones.
std::vector<std::size_t> Taps(std::size_t blockSide) {
  const std::size_t count = std::min(blockSide, kMostTaps);
  std::vector<std::size_t> taps(count);
  for (std::size_t i = 0; i < count; ++i) taps[i] = (2 * i + 1) * blockSide / (2 * count);
  return taps;
}

struct Sums {
  std::uint32_t first, second, third;
};

// Sums over the taps of each block of one row of blocks. One sample a pixel counts as three equal ones.
void SumBlocks(const Picture& picture, std::size_t blockRow, std::size_t blockSide,
               const std::vector<std::size_t>& taps, std::vector<Sums>& sums) {
  const std::size_t pixelStep = picture.pixelStep();
  const std::size_t second = picture.hasColour() ? picture.sampleStep() : 0;
  const std::size_t third = 2 * second;
  std::fill(sums.begin(), sums.end(), Sums{0, 0, 0});
  for (const std::size_t down : taps) {
    const auto row = picture.Row(blockRow * blockSide + down);
    for (const std::size_t across : taps) {
      std::size_t at = across * pixelStep;
      for (Sums& sum : sums) {
        sum.first += row[at];
        sum.second += row[at + second];
        sum.third += row[at + third];
        at += blockSide * pixelStep;
      }
    }
  }
}

CellColour ColourOf(const Sums& sum, std::uint32_t pixels) {
  const auto& even = Tones().sample;
  const int first = even[sum.first / pixels];
  const int second = even[sum.second / pixels];
  const int third = even[sum.third / pixels];
  const auto [low, high] = std::minmax({first, second, third});
  return {static_cast<std::int16_t>(first - third), static_cast<std::int16_t>(2 * second - first - third),
          static_cast<std::uint8_t>(high - low)};
}

// Collects the rows of blocks that make a row of cells.
class CellRow {
 public:
  explicit CellRow(std::size_t cells) : sums_(cells, Sums{0, 0, 0}) {}

  void Add(const std::vector<Sums>& row) {
    for (std::size_t cell = 0; cell < sums_.size(); ++cell) {
      for (std::size_t i = 0; i < kCellSide; ++i) {
        const Sums& block = row[cell * kCellSide + i];
        sums_[cell].first += block.first;
        sums_[cell].second += block.second;
        sums_[cell].third += block.third;
      }
    }
  }

  void MoveTo(std::vector<CellColour>& cells, std::uint32_t pixelsPerCell) {
    for (Sums& sum : sums_) {
      cells.push_back(ColourOf(sum, pixelsPerCell));
      sum = {0, 0, 0};
    }
  }

 private:
  std::vector<Sums> sums_;
};

}  // namespace

WorkingCopy MakeWorkingCopy(const Picture& picture) {
  const std::size_t blockSide = BlockSide(picture.width(), picture.height());
  const std::vector<std::size_t> taps = Taps(blockSide);
  const auto pixelsPerBlock = static_cast<std::uint32_t>(taps.size() * taps.size());

  WorkingCopy copy;
  copy.width = picture.width() / blockSide;
  copy.height = picture.height() / blockSide;
  copy.grey.resize(copy.width * copy.height);
  CellRow cellRow(picture.hasColour() ? copy.width / kCellSide : 0);
  if (picture.hasColour()) copy.cells.reserve((copy.width / kCellSide) * (copy.height / kCellSide));

  const auto& evenGrey = Tones().grey;
  std::vector<Sums> sums(copy.width);
  for (std::size_t y = 0; y < copy.height; ++y) {
    SumBlocks(picture, y, blockSide, taps, sums);
    std::uint8_t* const grey = copy.grey.data() + y * copy.width;
    for (std::size_t x = 0; x < copy.width; ++x) {
      grey[x] = evenGrey[(sums[x].first + 2 * sums[x].second + sums[x].third) / pixelsPerBlock];
    }
    if (!picture.hasColour()) continue;
    cellRow.Add(sums);
    if (y % kCellSide == kCellSide - 1) cellRow.MoveTo(copy.cells, pixelsPerBlock * kCellSide * kCellSide);
  }
  return copy;
}

}  // namespace catalogcore::document_type
