#include "engines/document_type/features.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace catalogcore::document_type {
namespace {

constexpr int kColourful = 48;

// The sums are integers, so the variance is exactly the same when every value changes its sign.
double Variance(std::int64_t sum, std::int64_t square, double count) {
  const double mean = static_cast<double>(sum) / count;
  return std::max(0.0, static_cast<double>(square) / count - mean * mean);
}

void MeasureColour(const WorkingCopy& copy, FeatureVector& features) {
  if (copy.cells.empty()) return;
  std::int64_t chroma = 0;
  std::int64_t colourful = 0;
  std::int64_t outer = 0;
  std::int64_t outerSquare = 0;
  std::int64_t middle = 0;
  std::int64_t middleSquare = 0;
  for (const CellColour& cell : copy.cells) {
    chroma += cell.chroma;
    colourful += cell.chroma > kColourful;
    const std::int64_t outerHere = cell.outer;
    const std::int64_t middleHere = cell.middle;
    outer += outerHere;
    outerSquare += outerHere * outerHere;
    middle += middleHere;
    middleSquare += middleHere * middleHere;
  }
  const auto count = static_cast<double>(copy.cells.size());
  features[kChroma] = static_cast<double>(chroma) / count / 255;
  features[kColourfulShare] = static_cast<double>(colourful) / count;
  features[kColourSpread] =
      std::sqrt(Variance(outer, outerSquare, count) + Variance(middle, middleSquare, count) / 4) / 255;
}

}  // namespace

FeatureVector MeasureFeatures(const WorkingCopy& copy) {
  FeatureVector features{};
  MeasureTones(copy, features);
  const double meanGradient = MeasureTexture(copy, features);
  const ToneBlocks grid = CutIntoBlocks(copy);
  MeasureBlocks(copy, grid, meanGradient, features);
  MeasureInk(copy, grid, features);
  MeasureColour(copy, features);
  features[kPictureSize] = std::log2(static_cast<double>(std::max(copy.width, copy.height)));
  return features;
}

}  // namespace catalogcore::document_type
