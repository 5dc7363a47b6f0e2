#include "engines/faces/pyramid.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace catalogcore::faces {
namespace {

constexpr std::int32_t kLeastSideToHalve = 40;
constexpr std::int32_t kOutside = 128;

// Each pixel is the mean of four. Drops a last odd row or column.
GreyPicture Halved(const PixelView& picture) {
  GreyPicture half;
  half.size = {picture.Stride() / 2, picture.Rows() / 2};
  half.pixels.resize(half.size.Area());
  const MutablePixelView target(half.pixels.data(), half.size.height, half.size.width);
  for (std::int32_t y = 0; y < half.size.height; ++y) {
    const auto upper = picture.Row(2 * y);
    const auto lower = picture.Row(2 * y + 1);
    const auto row = target.Row(y);
    for (std::size_t x = 0; x < row.size(); ++x) {
      const int sum = upper[2 * x] + upper[2 * x + 1] + lower[2 * x] + lower[2 * x + 1];
      row[x] = static_cast<std::uint8_t>((sum + 2) / 4);
    }
  }
  return half;
}

// Positions of samples are fixed-point, in 1/65536 pixel, and relative to the centre of the first pixel.
constexpr int kPositionBits = 16;
constexpr int kWeightBits = 8;
constexpr std::int64_t kOne = std::int64_t{1} << kPositionBits;
constexpr std::int32_t kWeightOne = 1 << kWeightBits;

std::int64_t ToFixed(double position) { return std::llround(position * static_cast<double>(kOne)); }

struct FixedPosition {
  std::int64_t pixel;
  std::int32_t weight;  // of the next pixel, in 1/kWeightOne
};

FixedPosition Split(std::int64_t position) {
  return {position >> kPositionBits,
          static_cast<std::int32_t>((position & (kOne - 1)) >> (kPositionBits - kWeightBits))};
}

std::int32_t PixelAt(const PixelView& picture, std::int64_t x, std::int64_t y) {
  const bool isInside = x >= 0 && x < picture.Stride() && y >= 0 && y < picture.Rows();
  return isInside ? picture.Row(y)[static_cast<std::size_t>(x)] : kOutside;
}

std::int32_t Mix(std::int32_t first, std::int32_t second, std::int32_t weight) {
  return first * (kWeightOne - weight) + second * weight;
}

std::uint8_t Interpolate(const PixelView& picture, std::int64_t x, std::int64_t y) {
  const auto [column, acrossWeight] = Split(x);
  const auto [row, downWeight] = Split(y);
  const std::int32_t upper = Mix(PixelAt(picture, column, row), PixelAt(picture, column + 1, row), acrossWeight);
  const std::int32_t lower =
      Mix(PixelAt(picture, column, row + 1), PixelAt(picture, column + 1, row + 1), acrossWeight);
  return static_cast<std::uint8_t>((Mix(upper, lower, downWeight) + kWeightOne * kWeightOne / 2) >> (2 * kWeightBits));
}

}  // namespace

Direction InPicture(int quarter, const Direction& inPatch) {
  switch (quarter) {
    case 0:
      return inPatch;
    case 1:
      return {-inPatch.down, inPatch.right};
    case 2:
      return {-inPatch.right, -inPatch.down};
    default:
      return {inPatch.down, -inPatch.right};
  }
}

Pyramid::Pyramid(const PixelView& picture) : picture_(picture) {
  for (PixelView last = picture; std::min(last.Stride(), last.Rows()) >= kLeastSideToHalve;) {
    halves_.push_back(Halved(last));
    last = halves_.back().View();
  }
}

// Samples the smallest level in which the patch still takes at least every pixel.
void Pyramid::CutUpright(const Place& place, double side, GreyPicture& patch) const {
  std::size_t level = 0;
  double step = 1;  // pixels of the picture in a pixel of the level
  for (; level + 1 < LevelCount() && place.size >= 2 * step * side; ++level) step *= 2;
  const PixelView source = Level(level);

  const std::int64_t centreX = ToFixed(place.x / step - 0.5);
  const std::int64_t centreY = ToFixed(place.y / step - 0.5);
  const double halfStep = place.size / (side * step) / 2;  // half the distance of two pixels of the patch
  const auto [right, down] = InPicture(place.quarter, {halfStep, 0});
  const std::int64_t alongX = ToFixed(right),
                     alongY = ToFixed(down);  // from one column of the patch to the next, halved
  const MutablePixelView target(patch.pixels.data(), patch.size.height, patch.size.width);
  for (std::int32_t y = 0; y < target.Rows(); ++y) {
    const std::int64_t rowsDown = 2 * std::int64_t{y} + 1 - target.Rows();
    std::int64_t columnsRight = 1 - target.Stride();
    for (std::uint8_t& pixel : target.Row(y)) {
      pixel = Interpolate(source, centreX + columnsRight * alongX - rowsDown * alongY,
                          centreY + columnsRight * alongY + rowsDown * alongX);
      columnsRight += 2;
    }
  }
}

}  // namespace catalogcore::faces
