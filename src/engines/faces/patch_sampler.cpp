#include "engines/faces/patch_sampler.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace catalogcore::faces {
namespace {

// Positions are fixed-point, in 1/65536 pixel. Pictures have some ten thousand pixels on a side at most, and
// squares lie about them by less than that: 32 bits hold every position.
constexpr int kPositionBits = 16;
constexpr int kWeightBits = 8;
constexpr std::int32_t kOne = 1 << kPositionBits;
constexpr std::int32_t kWeightOne = 1 << kWeightBits;

std::int32_t ToFixed(double position) { return static_cast<std::int32_t>(std::lround(position * kOne)); }

// Where a position lies on an axis: between two neighbours, `weight` of kWeightOne of the way to the second.
struct Neighbours {
  Neighbours(std::int32_t position, std::int32_t length) {
    const std::int32_t last = (length - 1) * kOne;
    const std::int32_t inside = std::clamp(position, 0, last);
    first = inside >> kPositionBits;
    second = std::min(first + 1, length - 1);
    weight = (inside & (kOne - 1)) >> (kPositionBits - kWeightBits);
  }

  std::int32_t first;
  std::int32_t second;
  std::int32_t weight;
};

std::int32_t Mix(std::int32_t first, std::int32_t second, std::int32_t weight) {
  return first * (kWeightOne - weight) + second * weight;
}

std::uint8_t Interpolate(const GreyView& picture, std::int32_t x, std::int32_t y) {
  const Neighbours column(x, picture.size.width);
  const Neighbours row(y, picture.size.height);
  const auto upper = picture.Row(row.first);
  const auto lower = picture.Row(row.second);
  const auto left = static_cast<std::size_t>(column.first);
  const auto right = static_cast<std::size_t>(column.second);
  const std::int32_t sum =
      Mix(Mix(upper[left], upper[right], column.weight), Mix(lower[left], lower[right], column.weight), row.weight);
  return static_cast<std::uint8_t>((sum + kWeightOne * kWeightOne / 2) >> (2 * kWeightBits));
}

}  // namespace

// Sampling at every second pixel or coarser would skip what lies between, so larger squares start from a
// halved copy.
std::size_t PatchSampler::HalvingsFor(double step) const {
  std::size_t halvings = 0;
  PictureSize size = picture_.size;
  for (; step >= 2 && std::min(size.width, size.height) >= 2; step /= 2) {
    ++halvings;
    size = {size.width / 2, size.height / 2};
  }
  return halvings;
}

GreyView PatchSampler::Halved(std::size_t halvings) {
  while (halves_.size() < halvings) {
    halves_.push_back(Halve(halves_.empty() ? picture_ : halves_.back().View()));
  }
  return halvings == 0 ? picture_ : halves_[halvings - 1].View();
}

void PatchSampler::Sample(const Square& square, const Pose& pose, GreyPicture& patch) {
  const std::size_t halvings = HalvingsFor(square.side / pose.side);
  const GreyView level = Halved(halvings);
  const double levelScale = std::ldexp(1.0, -static_cast<int>(halvings));
  const double step = square.side * levelScale / pose.side;
  const double across = pose.isMirrored ? -step : step;
  const double angle = pose.degrees * std::numbers::pi / 180;
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);

  const double centreX = square.centreX * levelScale - 0.5;  // the first pixel's centre is its origin
  const double centreY = square.centreY * levelScale - 0.5;
  const std::int32_t columnStepX = ToFixed(across * cosine);
  const std::int32_t columnStepY = ToFixed(across * sine);
  const double left = 0.5 - patch.size.width / 2.0;
  for (std::int32_t row = 0; row < patch.size.height; ++row) {
    const double down = row + 0.5 - patch.size.height / 2.0;
    std::int32_t x = ToFixed(centreX + left * across * cosine - down * step * sine);
    std::int32_t y = ToFixed(centreY + left * across * sine + down * step * cosine);
    std::uint8_t* target = patch.pixels.data() + static_cast<std::ptrdiff_t>(row) * patch.size.width;
    for (std::int32_t column = 0; column < patch.size.width; ++column) {
      *target++ = Interpolate(level, x, y);
      x += columnStepX;
      y += columnStepY;
    }
  }
}

}  // namespace catalogcore::faces
