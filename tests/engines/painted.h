// Pictures painted pixel by pixel, in every depth.
#ifndef CATALOGCORE_TESTS_ENGINES_PAINTED_H_
#define CATALOGCORE_TESTS_ENGINES_PAINTED_H_

#include <algorithm>
#include <array>
#include <cstdint>
#include <random>

#include "tools/picture_preparation.h"

namespace catalogcore {

using PaintedColour = std::array<double, 3>;

// `paint(x, y)` returns the colour of a pixel, 0 to 255. Grey takes the second sample. The low bytes of wide samples
// and the seven bytes of padding are noise.
template <typename Paint>
tools::SourcePicture Painted(std::int32_t width, std::int32_t height, std::int32_t bitsPerPixel, Paint paint) {
  tools::SourcePicture picture{width, height, width * bitsPerPixel / 8 + 7, bitsPerPixel, 0, {}};
  std::mt19937 noise(1);
  const bool isWide = bitsPerPixel == 16 || bitsPerPixel == 48;
  for (std::int32_t y = 0; y < height; ++y) {
    for (std::int32_t x = 0; x < width; ++x) {
      const PaintedColour colour = paint(x, y);
      for (std::size_t s = bitsPerPixel < 24 ? 1 : 0; s < (bitsPerPixel < 24 ? 2U : 3U); ++s) {
        if (isWide) picture.pixels.push_back(static_cast<std::uint8_t>(noise()));
        picture.pixels.push_back(static_cast<std::uint8_t>(std::clamp(colour[s], 0.0, 255.0)));
      }
    }
    for (int i = 0; i < 7; ++i) picture.pixels.push_back(static_cast<std::uint8_t>(noise()));
  }
  return picture;
}

}  // namespace catalogcore

#endif  // CATALOGCORE_TESTS_ENGINES_PAINTED_H_
