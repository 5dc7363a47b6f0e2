#include "engines/document_type/texture_features.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "engines/document_type/blocks.h"
#include "engines/document_type/ink.h"
#include "engines/document_type/lines.h"

namespace catalogcore::document_type {
namespace {

double Ratio(double part, double whole) { return whole > 0 ? part / whole : 0; }

constexpr double kBlockPixels = kBlockSide * kBlockSide;

// Gradients: the larger of the differences to the right and to the lower neighbour.
constexpr int kFlatGradient = 3;
constexpr int kMiddlingGradient = 20;
constexpr int kStrongGradient = 48;

struct GradientCounts {
  std::uint32_t flat = 0, middling = 0, strong = 0, aligned = 0, all = 0;
  std::uint64_t sum = 0;
};

GradientCounts CountGradients(const WorkingCopy& copy) {
  GradientCounts counts;
  for (std::size_t y = 0; y + 1 < copy.height; ++y) {
    const std::uint8_t* const row = copy.grey.data() + y * copy.width;
    const std::uint8_t* const next = row + copy.width;
    std::uint32_t flat = 0;
    std::uint32_t middling = 0;
    std::uint32_t strong = 0;
    std::uint32_t aligned = 0;
    std::uint32_t sum = 0;
    for (std::size_t x = 0; x + 1 < copy.width; ++x) {
      const int across = std::abs(row[x] - row[x + 1]);
      const int down = std::abs(row[x] - next[x]);
      const int gradient = std::max(across, down);
      flat += gradient <= kFlatGradient;
      middling += gradient > kFlatGradient && gradient <= kMiddlingGradient;
      strong += gradient > kStrongGradient;
      aligned += gradient > kStrongGradient && 3 * std::min(across, down) < gradient;
      sum += static_cast<std::uint32_t>(gradient);
    }
    counts.flat += flat;
    counts.middling += middling;
    counts.strong += strong;
    counts.aligned += aligned;
    counts.sum += sum;
  }
  counts.all = static_cast<std::uint32_t>((copy.width - 1) * (copy.height - 1));
  return counts;
}

void MeasureGradients(const GradientCounts& counts, FeatureVector& features) {
  features[kFlatGradients] = Ratio(counts.flat, counts.all);
  features[kMiddlingGradients] = Ratio(counts.middling, counts.all);
  features[kStrongGradients] = Ratio(counts.strong, counts.all);
  features[kAlignedGradients] = Ratio(counts.aligned, counts.strong);
  features[kStrongOfSteep] = Ratio(counts.strong, counts.all - counts.flat);
}

void MeasureBlockRanges(const BlockGrid& grid, FeatureVector& features) {
  const double paper = features[kPaperTone] * 255;
  double flat = 0;
  double flatAtPaper = 0;
  double middling = 0;
  for (const Block& block : grid.blocks) {
    const int range = block.high - block.low;
    flat += range < 16;
    flatAtPaper += range < 16 && std::abs(block.sum / kBlockPixels - paper) < 8;
    middling += range >= 16 && range < 64;
  }
  features[kFlatBlocks] = flat / static_cast<double>(grid.blocks.size());
  features[kFlatAtPaper] = Ratio(flatAtPaper, flat);
  features[kMiddlingBlocks] = middling / static_cast<double>(grid.blocks.size());
}

// Small things (print) vanish in the means of blocks, large ones (what photographs show) stay.
void MeasureScales(const WorkingCopy& copy, const BlockGrid& grid, double meanGradient, FeatureVector& features) {
  double sum = 0;
  double square = 0;
  double change = 0;
  std::size_t pairs = 0;
  for (std::size_t y = 0; y < grid.height; ++y) {
    for (std::size_t x = 0; x < grid.width; ++x) {
      const Block* const block = &grid.blocks[y * grid.width + x];
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

void MeasureTexture(const WorkingCopy& copy, FeatureVector& features) {
  const GradientCounts gradients = CountGradients(copy);
  MeasureGradients(gradients, features);
  MeasureLines(copy, features);
  const BlockGrid grid = CutIntoBlocks(copy);
  MeasureBlockRanges(grid, features);
  MeasureScales(copy, grid, static_cast<double>(gradients.sum) / gradients.all, features);
  MeasureInk(copy, grid, features);
}

}  // namespace catalogcore::document_type
