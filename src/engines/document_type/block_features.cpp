// The blocks of the working copy, and the features of their ranges and means.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "engines/document_type/features.h"

namespace catalogcore::document_type {
namespace {

constexpr double kBlockPixels = kBlockSide * kBlockSide;

// Each column of a row of blocks: the same values as of a block, over kBlockSide pixels. Whole rows at a time are what
// compilers vectorise.
class BlockColumns {
 public:
  explicit BlockColumns(std::size_t width) : low_(width), high_(width), sum_(width) {}

  void Measure(const PixelView& grey, std::size_t top) {
    std::fill(low_.begin(), low_.end(), std::uint8_t{255});
    std::fill(high_.begin(), high_.end(), std::uint8_t{0});
    std::fill(sum_.begin(), sum_.end(), std::uint16_t{0});
    for (std::size_t y = top; y < top + kBlockSide; ++y) {
      const auto row = grey.Row(y);
      for (std::size_t x = 0; x < low_.size(); ++x) low_[x] = std::min(low_[x], row[x]);
      for (std::size_t x = 0; x < high_.size(); ++x) high_[x] = std::max(high_[x], row[x]);
      for (std::size_t x = 0; x < sum_.size(); ++x) sum_[x] = static_cast<std::uint16_t>(sum_[x] + row[x]);
    }
  }

  ToneBlock Block(std::size_t left) const {
    ToneBlock block{255, 0, 0};
    for (std::size_t x = left; x < left + kBlockSide; ++x) {
      block.low = std::min(block.low, low_[x]);
      block.high = std::max(block.high, high_[x]);
      block.sum = static_cast<std::uint16_t>(block.sum + sum_[x]);
    }
    return block;
  }

 private:
  std::vector<std::uint8_t> low_, high_;
  std::vector<std::uint16_t> sum_;
};

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

}  // namespace

ToneBlocks CutIntoBlocks(const WorkingCopy& copy) {
  ToneBlocks grid;
  grid.width = copy.width / kBlockSide;
  grid.height = copy.height / kBlockSide;
  grid.blocks.reserve(grid.width * grid.height);
  BlockColumns columns(grid.width * kBlockSide);
  for (std::size_t y = 0; y < grid.height; ++y) {
    columns.Measure(copy.Grey(), y * kBlockSide);
    for (std::size_t x = 0; x < grid.width; ++x) grid.blocks.push_back(columns.Block(x * kBlockSide));
  }
  return grid;
}

void MeasureBlocks(const WorkingCopy& copy, const ToneBlocks& grid, double meanGradient, FeatureVector& features) {
  MeasureBlockRanges(grid, features);
  MeasureScales(copy, grid, meanGradient, features);
}

}  // namespace catalogcore::document_type
