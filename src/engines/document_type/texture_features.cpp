// Features of the tones' change from pixel to pixel: gradients and thin lines.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include "engines/document_type/features.h"

namespace catalogcore::document_type {
namespace {

// The gradient of a pixel is the larger of its differences from the pixel to the right and the pixel below.
constexpr int kFlatGradient = 3;
constexpr int kMiddlingGradient = 20;
constexpr int kStrongGradient = 48;

struct GradientCounts {
  std::uint32_t flat = 0, middling = 0, strong = 0, aligned = 0, all = 0;
  std::uint64_t sum = 0;
};

GradientCounts CountGradients(const WorkingCopy& copy) {
  GradientCounts counts;
  const PixelView grey = copy.Grey();
  for (std::size_t y = 0; y + 1 < copy.height; ++y) {
    const auto row = grey.Row(y);
    const auto next = grey.Row(y + 1);
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

// Thin lines are pixels clearly darker, or clearly lighter, than the pixels kReach to either side. Print consists of
// dark lines. Photographs have few lines, about as many dark as light.
constexpr std::size_t kReach = 3;    // pixels
constexpr int kClearly = 24;         // tones
constexpr std::size_t kRowStep = 2;  // only every other row is read

struct LineCounts {
  std::uint32_t dark = 0, light = 0, seen = 0;
};

LineCounts CountLines(const WorkingCopy& copy) {
  LineCounts counts;
  const PixelView grey = copy.Grey();
  for (std::size_t y = kReach; y + kReach < copy.height; y += kRowStep) {
    const auto here = grey.Row(y);
    const auto above = grey.Row(y - kReach);
    const auto below = grey.Row(y + kReach);
    std::uint32_t dark = 0;
    std::uint32_t light = 0;
    for (std::size_t x = kReach; x + kReach < copy.width; ++x) {
      const int left = here[x - kReach];
      const int right = here[x + kReach];
      // The lighter and the darker of the two surroundings, across and down.
      const int ground = std::max(std::min<int>(left, right), std::min<int>(above[x], below[x]));
      const int shade = std::min(std::max<int>(left, right), std::max<int>(above[x], below[x]));
      dark += ground - here[x] >= kClearly;
      light += here[x] - shade >= kClearly;
    }
    counts.dark += dark;
    counts.light += light;
    counts.seen += static_cast<std::uint32_t>(copy.width - 2 * kReach);
  }
  return counts;
}

// REQUIRES: kStrongGradients and kMiddlingGradients are set.
void MeasureLines(const WorkingCopy& copy, FeatureVector& features) {
  const LineCounts counts = CountLines(copy);
  const double lines = static_cast<double>(counts.dark) + counts.light;
  const double seen = counts.seen;
  const double steep = (features[kStrongGradients] + features[kMiddlingGradients]) * seen;
  features[kLineShare] = std::min(4.0, lines / (steep + 0.01 * seen));
  // The second summand keeps a few lines from deciding the balance.
  features[kDarkLines] = (static_cast<double>(counts.dark) - counts.light) / (lines + 0.002 * seen);
}

}  // namespace

double MeasureTexture(const WorkingCopy& copy, FeatureVector& features) {
  const GradientCounts gradients = CountGradients(copy);
  MeasureGradients(gradients, features);
  MeasureLines(copy, features);
  return static_cast<double>(gradients.sum) / gradients.all;
}

}  // namespace catalogcore::document_type
