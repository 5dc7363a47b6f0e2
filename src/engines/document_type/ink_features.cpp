// Features of ink and ground. Print consists of thin runs of an even dark tone on an even light tone; photographs do
// not.
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

// A pixel is clean ink below `cleanInk`, ink below `ink`, and clean ground from `cleanGround` on. A block that is not
// busy has no ink: `ink` is 0.
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

}  // namespace

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

}  // namespace catalogcore::document_type
