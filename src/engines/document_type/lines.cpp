#include "engines/document_type/lines.h"

#include <algorithm>
#include <cstdint>

namespace catalogcore::document_type {
namespace {

constexpr std::size_t kReach = 3;    // pixels to either side
constexpr int kClearly = 24;         // tones
constexpr std::size_t kRowStep = 2;  // every other row tells enough

struct LineCounts {
  std::uint32_t dark = 0, light = 0, seen = 0;
};

LineCounts CountLines(const WorkingCopy& copy) {
  LineCounts counts;
  for (std::size_t y = kReach; y + kReach < copy.height; y += kRowStep) {
    const std::uint8_t* const here = copy.grey.data() + y * copy.width;
    const std::uint8_t* const above = here - kReach * copy.width;
    const std::uint8_t* const below = here + kReach * copy.width;
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

}  // namespace

void MeasureLines(const WorkingCopy& copy, FeatureVector& features) {
  const LineCounts counts = CountLines(copy);
  const double lines = static_cast<double>(counts.dark) + counts.light;
  const double seen = counts.seen;
  const double steep = (features[kStrongGradients] + features[kMiddlingGradients]) * seen;
  features[kLineShare] = std::min(4.0, lines / (steep + 0.01 * seen));
  // A few lines alone say little: they draw the balance only so far.
  features[kDarkLines] = (static_cast<double>(counts.dark) - counts.light) / (lines + 0.002 * seen);
}

}  // namespace catalogcore::document_type
