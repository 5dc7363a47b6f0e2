#include "engines/faces/patch_sampler.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <numbers>

namespace catalogcore::faces {
namespace {

// Positions are fixed-point, in 1/65536 pixel. A picture has about ten thousand pixels on a side at most, and a square
// lies less than that outside it, so 32 bits hold every position.
constexpr int kPositionBits = 16;
constexpr int kWeightBits = 8;
constexpr std::int32_t kOne = 1 << kPositionBits;
constexpr std::int32_t kWeightOne = 1 << kWeightBits;

std::int32_t ToFixed(double position) { return static_cast<std::int32_t>(std::lround(position * kOne)); }

// The two pixels beside a position on an axis. The position is `weight` / kWeightOne of the way from the first to the
// second.
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

std::uint8_t Interpolate(const PixelView& picture, std::int32_t x, std::int32_t y) {
  const Neighbours column(x, picture.Stride());
  const Neighbours row(y, picture.Rows());
  const auto upper = picture.Row(row.first);
  const auto lower = picture.Row(row.second);
  const auto left = static_cast<std::size_t>(column.first);
  const auto right = static_cast<std::size_t>(column.second);
  const std::int32_t sum =
      Mix(Mix(upper[left], upper[right], column.weight), Mix(lower[left], lower[right], column.weight), row.weight);
  return static_cast<std::uint8_t>((sum + kWeightOne * kWeightOne / 2) >> (2 * kWeightBits));
}

// The picture at half its size, each pixel the mean of four. Drops a last odd row or column. REQUIRES: both sides are
// at least 2.
GreyPicture Halve(const PixelView& picture) {
  GreyPicture half;
  half.size = {picture.Stride() / 2, picture.Rows() / 2};
  half.pixels.reserve(half.size.Area());
  for (std::int32_t y = 0; y < half.size.height; ++y) {
    const auto upper = picture.Row(2 * y);
    const auto lower = picture.Row(2 * y + 1);
    for (std::size_t x = 0; x < static_cast<std::size_t>(half.size.width); ++x) {
      const int sum = upper[2 * x] + upper[2 * x + 1] + lower[2 * x] + lower[2 * x + 1];
      half.pixels.push_back(static_cast<std::uint8_t>((sum + 2) / 4));
    }
  }
  return half;
}

}  // namespace

// Sampling every second pixel or fewer would skip pixels, so larger squares start from a halved copy.
std::size_t PatchSampler::HalvingsFor(double step) const {
  std::size_t halvings = 0;
  PictureSize size = {picture_.Stride(), picture_.Rows()};
  for (; step >= 2 && std::min(size.width, size.height) >= 2; step /= 2) {
    ++halvings;
    size = {size.width / 2, size.height / 2};
  }
  return halvings;
}

PixelView PatchSampler::Halved(std::size_t halvings) {
  while (halves_.size() < halvings) {
    halves_.push_back(Halve(halves_.empty() ? picture_ : halves_.back().View()));
  }
  return halvings == 0 ? picture_ : halves_[halvings - 1].View();
}

void PatchSampler::Sample(const Square& square, const Pose& pose, GreyPicture& patch) {
  const std::size_t halvings = HalvingsFor(square.side / pose.side);
  const PixelView level = Halved(halvings);
  const double levelScale = std::ldexp(1.0, -static_cast<int>(halvings));
  const double step = square.side * levelScale / pose.side;
  const double across = pose.isMirrored ? -step : step;
  const double angle = pose.degrees * std::numbers::pi / 180;
  const double cosine = std::cos(angle);
  const double sine = std::sin(angle);

  const double centreX = square.centreX * levelScale - 0.5;  // the origin is the centre of the first pixel
  const double centreY = square.centreY * levelScale - 0.5;
  const std::int32_t columnStepX = ToFixed(across * cosine);
  const std::int32_t columnStepY = ToFixed(across * sine);
  const double left = 0.5 - patch.size.width / 2.0;
  const MutablePixelView target(patch.pixels.data(), patch.size.height, patch.size.width);
  for (std::int32_t row = 0; row < target.Rows(); ++row) {
    const double down = row + 0.5 - patch.size.height / 2.0;
    std::int32_t x = ToFixed(centreX + left * across * cosine - down * step * sine);
    std::int32_t y = ToFixed(centreY + left * across * sine + down * step * cosine);
    for (std::uint8_t& pixel : target.Row(row)) {
      pixel = Interpolate(level, x, y);
      x += columnStepX;
      y += columnStepY;
    }
  }
}

}  // namespace catalogcore::faces
