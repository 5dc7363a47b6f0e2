// A decoded picture with three samples of 8 bits a pixel, and the operations on it. libvips reads, scales, turns and
// compresses.
#ifndef CATALOGCORE_TOOLS_RASTER_H_
#define CATALOGCORE_TOOLS_RASTER_H_

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/pixel_view.h"
#include "tools/picture_preparation.h"

namespace catalogcore::tools {

using Colour = std::array<std::uint8_t, 3>;

struct Raster {
  std::size_t width = 0;
  std::size_t height = 0;
  std::vector<std::uint8_t> samples;  // width x height x 3, no padding

  MutablePixelView Pixels() { return {samples.data(), height, 3 * width}; }
  PixelView Pixels() const { return {samples.data(), height, 3 * width}; }
  std::size_t LongSide() const { return width > height ? width : height; }
};

// Each throws std::runtime_error with a message for the user if libvips fails.
Raster ReadRaster(const std::string& path);
Raster Scaled(const Raster& raster, double scale);
Raster ScaledTo(const Raster& raster, double longSide);
Raster Turned(const Raster& raster, double degrees, Colour background);
Raster Compressed(const Raster& raster, int jpegQuality);

Raster Cropped(const Raster& raster, std::size_t left, std::size_t top, std::size_t width, std::size_t height);
Raster Framed(const Raster& raster, std::array<std::size_t, 4> leftTopRightBottom, Colour background);
Raster Upright(const Raster& raster);  // a quarter turn

struct Depth {
  bool colour;
  bool wide;  // 16 bits a sample
};
SourcePicture ToSource(const Raster& raster, Depth depth, std::int32_t resolution);

}  // namespace catalogcore::tools

#endif  // CATALOGCORE_TOOLS_RASTER_H_
