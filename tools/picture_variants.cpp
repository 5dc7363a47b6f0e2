#include "tools/picture_variants.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace catalogcore::tools {
namespace {

// The distributions of the standard library may differ between implementations; the generator may not.
class Dice {
 public:
  explicit Dice(std::uint64_t seed) : generator_(seed) {}

  double Between(double low, double high) {
    constexpr double kSteps = 9007199254740992.0;  // 2^53
    return low + (high - low) * static_cast<double>(generator_() >> 11U) / kSteps;
  }
  // Uniform on a logarithmic scale.
  double Scale(double low, double high) { return std::exp(Between(std::log(low), std::log(high))); }
  bool Chance(double probability) { return Between(0, 1) < probability; }
  // Approximately normal, deviation 1: the sum of four uniform numbers.
  double Noise() {
    const std::uint64_t bits = generator_();
    double sum = 0;
    for (unsigned i = 0; i < 4; ++i) sum += static_cast<double>(bits >> (16 * i) & 0xFFFFU);
    return (sum / 65535 - 2) * 1.7320508;
  }

 private:
  std::mt19937_64 generator_;
};

std::uint8_t Sample(double value) { return static_cast<std::uint8_t>(std::floor(std::clamp(value, 0.0, 255.0) + 0.5)); }

Raster RandomCrop(const Raster& raster, Dice& dice) {
  const auto part = [&dice](std::size_t side) {
    const auto least = static_cast<double>(std::min<std::size_t>(side, 220));
    return static_cast<std::size_t>(std::max(least, static_cast<double>(side) * dice.Between(0.4, 1)));
  };
  const std::size_t width = part(raster.width);
  const std::size_t height = part(raster.height);
  const auto place = [&dice](std::size_t room) {
    return static_cast<std::size_t>(dice.Between(0, static_cast<double>(room)));
  };
  return Cropped(raster, place(raster.width - width), place(raster.height - height), width, height);
}

// Light that decreases to one side, a tint, less contrast, grain.
struct Exposure {
  std::array<double, 3> light;  // the value of white, a share of 255
  std::array<double, 3> black;  // the value of black, a share of 255
  double gamma;
  double fallX, fallY;  // change of light from one edge to the other
  double grain;
};

Exposure OldOrPhotographedPaper(Dice& dice) {
  const double light = dice.Between(0.45, 1);
  const double tint = dice.Chance(0.5) ? dice.Between(0, 0.3) : 0;
  const double black = dice.Between(0, 0.25) * light;
  return {{light, light * (1 - tint / 3), light * (1 - tint)},
          {black, black, black * (1 - tint)},
          dice.Scale(0.7, 1.5),
          dice.Between(-0.4, 0.4),
          dice.Between(-0.4, 0.4),
          dice.Chance(0.5) ? dice.Between(0, 8) : 0};
}

Exposure OtherDevelopment(Dice& dice) {
  const double light = dice.Between(0.75, 1.25);  // above 1 burns out the highlights
  const double tint = dice.Chance(0.2) ? dice.Between(0, 0.3) : 0;
  const double black = dice.Chance(0.3) ? dice.Between(0, 0.2) : 0;
  return {{light, light * (1 - tint / 3), light * (1 - tint)},
          {black, black, black},
          dice.Scale(0.5, 1.5),
          0,
          0,
          dice.Chance(0.3) ? dice.Between(0, 8) : 0};
}

void Expose(Raster& raster, const Exposure& exposure, Dice& dice) {
  std::array<double, 256> bent{};
  for (std::size_t i = 0; i < bent.size(); ++i) bent[i] = std::pow(static_cast<double>(i) / 255, exposure.gamma);
  std::size_t at = 0;
  for (std::size_t y = 0; y < raster.height; ++y) {
    const double down = static_cast<double>(y) / static_cast<double>(raster.height) - 0.5;
    for (std::size_t x = 0; x < raster.width; ++x) {
      const double right = static_cast<double>(x) / static_cast<double>(raster.width) - 0.5;
      const double fall = 1 + exposure.fallX * right + exposure.fallY * down;
      const double grain = exposure.grain > 0 ? exposure.grain * dice.Noise() : 0;
      for (std::size_t s = 0; s < 3; ++s, ++at) {
        const double tone = exposure.black[s] + (exposure.light[s] - exposure.black[s]) * bent[raster.samples[at]];
        raster.samples[at] = Sample(255 * tone * fall + grain);
      }
    }
  }
}

// The other side of the paper shows through: adds a faint mirrored copy.
void ShowThrough(Raster& raster, double strength) {
  for (std::size_t y = 0; y < raster.height; ++y) {
    const auto row = raster.Pixels().Row(y);
    for (std::size_t x = 0; x < raster.width / 2; ++x) {
      for (std::size_t s = 0; s < 3; ++s) {
        std::uint8_t& left = row[x * 3 + s];
        std::uint8_t& right = row[(raster.width - 1 - x) * 3 + s];
        const double covered = left;
        left = Sample(left * (1 - strength * (1 - right / 255.0)));
        right = Sample(right * (1 - strength * (1 - covered / 255.0)));
      }
    }
  }
}

// Smooth patches of darker and lighter paper: random brightness on a coarse grid, interpolated between its points.
void Stain(Raster& raster, double strength, Dice& dice) {
  constexpr std::size_t kCells = 7;
  std::array<std::array<double, kCells + 1>, kCells + 1> light{};
  for (auto& line : light) {
    for (double& point : line) point = 1 - strength * dice.Between(0, 1);
  }
  for (std::size_t y = 0; y < raster.height; ++y) {
    const auto row = raster.Pixels().Row(y);
    const double gridY = static_cast<double>(y) / static_cast<double>(raster.height) * kCells;
    const auto cellY = static_cast<std::size_t>(gridY);
    for (std::size_t x = 0; x < raster.width; ++x) {
      const double gridX = static_cast<double>(x) / static_cast<double>(raster.width) * kCells;
      const auto cellX = static_cast<std::size_t>(gridX);
      const double upper = std::lerp(light[cellY][cellX], light[cellY][cellX + 1], gridX - static_cast<double>(cellX));
      const double lower =
          std::lerp(light[cellY + 1][cellX], light[cellY + 1][cellX + 1], gridX - static_cast<double>(cellX));
      const double here = std::lerp(upper, lower, gridY - static_cast<double>(cellY));
      for (std::size_t s = 0; s < 3; ++s) {
        std::uint8_t& sample = row[x * 3 + s];
        sample = Sample(sample * here);
      }
    }
  }
}

// Objects in front of a plain background: the picture fades into one colour outside an ellipse.
void IsolateObjects(Raster& raster, Dice& dice) {
  const double size = dice.Between(0.2, 0.9);
  const double centreX = dice.Between(-0.3, 0.3);
  const double centreY = dice.Between(-0.3, 0.3);
  const double softness = dice.Between(0.05, 0.6);
  const double fall = dice.Chance(0.5) ? dice.Between(-50, 50) : 0;
  const double tone = dice.Chance(0.4) ? 255 : dice.Between(90, 255);
  const double tint = dice.Chance(0.5) ? dice.Between(0.6, 1) : 1;
  const std::array<double, 3> plain = {tone * tint, tone * (1 + tint) / 2, tone};
  for (std::size_t y = 0; y < raster.height; ++y) {
    const auto row = raster.Pixels().Row(y);
    const double down = 2 * static_cast<double>(y) / static_cast<double>(raster.height) - 1;
    for (std::size_t x = 0; x < raster.width; ++x) {
      const double right = 2 * static_cast<double>(x) / static_cast<double>(raster.width) - 1;
      const double away = std::hypot(right - centreX, down - centreY) - size;
      const double share = std::clamp(away / softness, 0.0, 1.0);
      for (std::size_t s = 0; s < 3; ++s) {
        std::uint8_t& sample = row[x * 3 + s];
        sample = Sample(std::lerp(static_cast<double>(sample), plain[s] + fall * down, share));
      }
    }
  }
}

void Age(Raster& raster, Dice& dice) {
  if (dice.Chance(0.5)) ShowThrough(raster, dice.Between(0.05, 0.3));
  if (dice.Chance(0.5)) Stain(raster, dice.Between(0.05, 0.4), dice);
}

Colour Bed(bool isDocument, Dice& dice) {
  const double kind = dice.Between(0, 1);
  if (kind < 0.45) return {255, 255, 255};
  const double tone = kind < (isDocument ? 0.85 : 0.9) ? dice.Between(0, 70) : dice.Between(70, 220);
  const double tint = dice.Between(0.8, 1);
  return {Sample(tone), Sample(tone * (1 + tint) / 2), Sample(tone * tint)};
}

Raster OnBed(const Raster& raster, double widest, Colour bed, Dice& dice) {
  std::array<std::size_t, 4> frame{};
  for (std::size_t& side : frame) {
    side = static_cast<std::size_t>(static_cast<double>(raster.LongSide()) *
                                    std::max(0.0, dice.Between(-widest / 2, widest)));
  }
  return Framed(raster, frame, bed);
}

struct Claim {
  std::int32_t resolution;
  double longSide;
};

// Scans have the size of their paper. Files without a resolution have any size, and so have photographs with any
// resolution.
Claim ClaimedSize(const Raster& raster, bool isDocument, Dice& dice) {
  const double kind = dice.Between(0, 1);
  const auto here = static_cast<double>(raster.LongSide());
  if (kind < 0.5) return {0, dice.Scale(isDocument ? 480 : 320, dice.Chance(0.05) ? kLongestSide : 2000)};
  const std::int32_t resolution = kind < 0.97 ? 150 : 300;
  if (!isDocument && dice.Chance(0.6)) return {resolution, std::min(kLongestSide, here * dice.Scale(0.4, 3))};
  const double inches = dice.Chance(0.5) ? kPageLength : dice.Scale(2.5, 13);
  return {resolution, inches * resolution};
}

}  // namespace

SourcePicture MakeVariant(const Raster& original, bool isDocument, std::uint64_t seed, std::uint64_t number) {
  Dice dice(seed * 1000003 + number);
  Raster raster = dice.Chance(0.4) ? RandomCrop(original, dice) : original;
  if (isDocument && dice.Chance(0.4)) Age(raster, dice);
  if (!isDocument && dice.Chance(0.2)) IsolateObjects(raster, dice);
  if (dice.Chance(0.4)) Expose(raster, isDocument ? OldOrPhotographedPaper(dice) : OtherDevelopment(dice), dice);
  const Colour bed = Bed(isDocument, dice);
  if (dice.Chance(0.3)) raster = Turned(raster, dice.Between(-5, 5), bed);
  if (dice.Chance(0.3)) raster = OnBed(raster, isDocument ? 0.2 : 0.06, bed, dice);
  if (dice.Chance(0.3)) raster = Upright(raster);
  if (dice.Chance(0.3)) raster = Compressed(raster, static_cast<int>(dice.Between(25, 95)));
  const Claim claim = ClaimedSize(raster, isDocument, dice);
  raster = ScaledTo(raster, claim.longSide);
  if (dice.Chance(0.4)) raster = Compressed(raster, static_cast<int>(dice.Between(40, 95)));
  return ToSource(raster, {dice.Chance(0.6), dice.Chance(0.25)}, claim.resolution);
}

}  // namespace catalogcore::tools
