// Features of the working copy in blocks of 8 x 8 pixels: ranges and means of their tones, and ink and ground within
// them. Rows and columns that do not fill a block are left out.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <span>
#include <utility>
#include <vector>

#include "engines/document_type/features.h"

namespace catalogcore::document_type {
namespace {

constexpr std::size_t kBlockSide = 8;
constexpr double kBlockPixels = kBlockSide * kBlockSide;

struct ToneBlock {
  std::uint8_t low;   // darkest tone
  std::uint8_t high;  // lightest tone
  std::uint16_t sum;  // of all tones
};

struct ToneBlocks {
  std::size_t width = 0;  // blocks, at least 2
  std::size_t height = 0;
  std::vector<ToneBlock> blocks;  // width x height
};

ToneBlock MeasureBlock(const PixelView& grey, std::size_t top, std::size_t left) {
  ToneBlock block{255, 0, 0};
  for (std::size_t y = 0; y < kBlockSide; ++y) {
    for (const std::uint8_t tone : grey.Run(top + y, left, kBlockSide)) {
      block.low = std::min(block.low, tone);
      block.high = std::max(block.high, tone);
      block.sum = static_cast<std::uint16_t>(block.sum + tone);
    }
  }
  return block;
}

ToneBlocks CutIntoBlocks(const WorkingCopy& copy) {
  ToneBlocks grid;
  grid.width = copy.width / kBlockSide;
  grid.height = copy.height / kBlockSide;
  const PixelView grey = copy.Grey();
  grid.blocks.reserve(grid.width * grid.height);
  for (std::size_t y = 0; y < grid.height; ++y) {
    for (std::size_t x = 0; x < grid.width; ++x) {
      grid.blocks.push_back(MeasureBlock(grey, y * kBlockSide, x * kBlockSide));
    }
  }
  return grid;
}

// The range of each block's 3 x 3 neighbourhood within the grid; `sum` is 0.
std::vector<ToneBlock> Neighbourhoods(const ToneBlocks& grid) {
  std::vector<ToneBlock> ranges(grid.blocks.size(), ToneBlock{255, 0, 0});
  for (std::size_t y = 0; y < grid.height; ++y) {
    for (std::size_t x = 0; x < grid.width; ++x) {
      ToneBlock& range = ranges[y * grid.width + x];
      for (std::size_t ny = y - (y > 0); ny < std::min(y + 2, grid.height); ++ny) {
        for (std::size_t nx = x - (x > 0); nx < std::min(x + 2, grid.width); ++nx) {
          range.low = std::min(range.low, grid.blocks[ny * grid.width + nx].low);
          range.high = std::max(range.high, grid.blocks[ny * grid.width + nx].high);
        }
      }
    }
  }
  return ranges;
}

void MeasureBlockRanges(const ToneBlocks& grid, FeatureVector& features) {
  const double paper = features[kPaperTone] * 255;
  double flat = 0;
  double flatAtPaper = 0;
  double middling = 0;
  for (const ToneBlock& block : grid.blocks) {
    const int range = block.high - block.low;
    flat += range < 16;
    flatAtPaper += range < 16 && std::abs(block.sum / kBlockPixels - paper) < 8;
    middling += range >= 16 && range < 64;
  }
  features[kFlatBlocks] = flat / static_cast<double>(grid.blocks.size());
  features[kFlatAtPaper] = Ratio(flatAtPaper, flat);
  features[kMiddlingBlocks] = middling / static_cast<double>(grid.blocks.size());
}

// Block means lose small structures, as in print, and keep large ones, as in photographs.
void MeasureScales(const WorkingCopy& copy, const ToneBlocks& grid, double meanGradient, FeatureVector& features) {
  double sum = 0;
  double square = 0;
  double change = 0;
  std::size_t pairs = 0;
  for (std::size_t y = 0; y < grid.height; ++y) {
    for (std::size_t x = 0; x < grid.width; ++x) {
      const ToneBlock* const block = &grid.blocks[y * grid.width + x];
      const double mean = block->sum / kBlockPixels;
      sum += mean;
      square += mean * mean;
      if (x + 1 == grid.width || y + 1 == grid.height) continue;
      change +=
          std::max(std::abs(mean - block[1].sum / kBlockPixels), std::abs(mean - block[grid.width].sum / kBlockPixels));
      ++pairs;
    }
  }
  const auto count = static_cast<double>(grid.blocks.size());
  const double coarse = std::max(0.0, square / count - sum / count * (sum / count));

  std::uint64_t total = 0;
  std::uint64_t totalSquare = 0;
  for (const std::uint8_t tone : copy.grey) {
    total += tone;
    totalSquare += static_cast<std::uint64_t>(tone) * tone;
  }
  const auto pixels = static_cast<double>(copy.grey.size());
  const double mean = static_cast<double>(total) / pixels;
  const double variance = static_cast<double>(totalSquare) / pixels - mean * mean;
  features[kCoarseVariance] = std::min(1.0, Ratio(coarse, variance));
  features[kCoarseGradient] = std::min(8.0, Ratio(change / static_cast<double>(pairs), meanGradient));
}

// Ink and ground. Print consists of thin runs of an even dark tone on an even light tone; photographs do not.

bool IsBusy(const ToneBlock& range) { return range.high - range.low >= kBusyRange; }

// Runs of ink in one direction.
struct Runs {
  std::uint32_t count = 0;
  std::uint32_t shortInk = 0;  // pixels in runs of at most kShortRun

  void End(std::uint32_t length) {
    count += length > 0;
    shortInk += length <= kShortRun ? length : 0;
  }
};

struct InkCounts {
  std::uint32_t ink = 0, ground = 0, cleanInk = 0, cleanGround = 0;
  Runs across, down;
  std::vector<std::uint32_t> ofRow, ofColumn;  // ink pixels of each
};

// A pixel is clean ink below `cleanInk`, ink below `ink`, and clean ground from `cleanGround` on. A block that is not busy
// has no ink: `ink` is 0.
struct InkLimits {
  int cleanInk, ink, cleanGround;
};

InkLimits LimitsOf(const ToneBlock& range) {
  if (!IsBusy(range)) return {0, 0, 256};
  const int span = range.high - range.low;
  return {range.low + span / 4, range.low + span / 2, range.high - span / 6};
}

class InkCounter {
 public:
  InkCounter(std::size_t width, std::size_t height) : lengthDown_(width, 0) {
    counts_.ofRow.assign(height, 0);
    counts_.ofColumn.assign(width, 0);
  }

  // Adds row y, in ascending order of y. `ranges` are the neighbourhoods of the blocks in this row.
  void AddRow(std::span<const std::uint8_t> row, std::size_t y, const ToneBlock* ranges) {
    std::uint32_t length = 0;
    for (std::size_t block = 0; block < lengthDown_.size() / kBlockSide; ++block) {
      const InkLimits limits = LimitsOf(ranges[block]);
      if (limits.ink == 0) {
        SkipBlock(block * kBlockSide, length);
      } else {
        AddBlock(row, block * kBlockSide, limits, y, length);
      }
    }
    counts_.across.End(length);
  }

  InkCounts Finish() {
    for (const std::uint32_t length : lengthDown_) counts_.down.End(length);
    return std::move(counts_);
  }

 private:
  void SkipBlock(std::size_t from, std::uint32_t& length) {
    counts_.across.End(length);
    length = 0;
    for (std::size_t x = from; x < from + kBlockSide; ++x) {
      counts_.down.End(lengthDown_[x]);
      lengthDown_[x] = 0;
    }
  }

  void AddBlock(std::span<const std::uint8_t> row, std::size_t from, const InkLimits& limits, std::size_t y,
                std::uint32_t& length) {
    std::uint32_t ink = 0;
    for (std::size_t x = from; x < from + kBlockSide; ++x) {
      const int tone = row[x];
      counts_.cleanInk += tone < limits.cleanInk;
      counts_.cleanGround += tone >= limits.cleanGround;
      if (tone < limits.ink) {
        ++ink;
        ++length;
        ++lengthDown_[x];
        ++counts_.ofColumn[x];
      } else {
        counts_.across.End(length);
        length = 0;
        counts_.down.End(lengthDown_[x]);
        lengthDown_[x] = 0;
      }
    }
    counts_.ink += ink;
    counts_.ground += static_cast<std::uint32_t>(kBlockSide) - ink;
    counts_.ofRow[y] += ink;
  }

  InkCounts counts_;
  std::vector<std::uint32_t> lengthDown_;  // of the run that ends in each column
};

InkCounts CountInk(const WorkingCopy& copy, const ToneBlocks& grid, const std::vector<ToneBlock>& ranges) {
  const PixelView grey = copy.Grey();
  InkCounter counter(grid.width * kBlockSide, grid.height * kBlockSide);
  for (std::size_t y = 0; y < grid.height * kBlockSide; ++y) {
    counter.AddRow(grey.Row(y), y, &ranges[y / kBlockSide * grid.width]);
  }
  return counter.Finish();
}

// The profile is the ink of each row or column. Lines of text make it change at the edges of every line.
double ProfileChange(const std::vector<std::uint32_t>& profile, double ink) {
  double change = 0;
  for (std::size_t i = 1; i < profile.size(); ++i) {
    change += std::abs(static_cast<double>(profile[i]) - static_cast<double>(profile[i - 1]));
  }
  return std::min(2.0, Ratio(change, ink));
}

struct Spread {
  double sum = 0, square = 0, count = 0;
  void Add(double value) {
    sum += value;
    square += value * value;
    ++count;
  }
  double Deviation() const {
    if (count == 0) return 0;
    return std::sqrt(std::max(0.0, square / count - sum / count * (sum / count)));
  }
};

void MeasureNeighbourhoods(const std::vector<ToneBlock>& ranges, FeatureVector& features) {
  const double paper = features[kPaperTone] * 255;
  Spread light;
  Spread dark;
  double onPaper = 0;
  for (const ToneBlock& range : ranges) {
    if (!IsBusy(range)) continue;
    light.Add(range.high / 255.0);
    dark.Add(range.low / 255.0);
    onPaper += std::abs(range.high - paper) < 20;
  }
  features[kBusyShare] = light.count / static_cast<double>(ranges.size());
  features[kGroundSpread] = light.Deviation();
  features[kInkSpread] = dark.Deviation();
  features[kGroundIsPaper] = Ratio(onPaper, light.count);
}

void SetBoth(FeatureVector& features, Feature along, Feature across, double one, double other) {
  features[along] = std::max(one, other);
  features[across] = std::min(one, other);
}

void MeasureInk(const WorkingCopy& copy, const ToneBlocks& grid, FeatureVector& features) {
  const std::vector<ToneBlock> ranges = Neighbourhoods(grid);
  MeasureNeighbourhoods(ranges, features);

  const InkCounts counts = CountInk(copy, grid, ranges);
  const double ink = counts.ink;
  const double busy = ink + counts.ground;
  features[kInkShare] = Ratio(ink, busy);
  features[kCleanGround] = Ratio(counts.cleanGround, counts.ground);
  features[kCleanInk] = Ratio(counts.cleanInk, ink);
  SetBoth(features, kShortInkAlong, kShortInkAcross, Ratio(counts.across.shortInk, ink),
          Ratio(counts.down.shortInk, ink));
  SetBoth(features, kInkRunsAlong, kInkRunsAcross, Ratio(counts.across.count, busy), Ratio(counts.down.count, busy));
  const double mostRuns = std::max(counts.across.count, counts.down.count);
  features[kInkRunLength] = std::min(4.0, Ratio(ink, mostRuns * kShortRun));
  SetBoth(features, kProfileAlong, kProfileAcross, ProfileChange(counts.ofRow, ink),
          ProfileChange(counts.ofColumn, ink));
}

}  // namespace

void MeasureBlocks(const WorkingCopy& copy, double meanGradient, FeatureVector& features) {
  const ToneBlocks grid = CutIntoBlocks(copy);
  MeasureBlockRanges(grid, features);
  MeasureScales(copy, grid, meanGradient, features);
  MeasureInk(copy, grid, features);
}

}  // namespace catalogcore::document_type
