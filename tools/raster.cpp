#include "tools/raster.h"

#include <vips/vips.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <memory>
#include <stdexcept>

namespace catalogcore::tools {
namespace {

struct UnreferenceImage {
  void operator()(VipsImage* image) const { g_object_unref(image); }
};
using OwnedVipsImage = std::unique_ptr<VipsImage, UnreferenceImage>;

[[noreturn]] void Fail(const std::string& what) {
  const std::string why = vips_error_buffer();
  vips_error_clear();
  throw std::runtime_error(what + ": " + why);
}

// `image` is the result of the call that returned `failed`. A reference, because the order of evaluation of arguments
// is unspecified.
OwnedVipsImage Taken(int failed, VipsImage* const& image, const char* what) {
  if (failed != 0) Fail(what);
  return OwnedVipsImage(image);
}

// Does not copy the samples: the raster must outlive the image.
OwnedVipsImage View(const Raster& raster) {
  VipsImage* const image =
      vips_image_new_from_memory(raster.samples.data(), raster.samples.size(), static_cast<int>(raster.width),
                                 static_cast<int>(raster.height), 3, VIPS_FORMAT_UCHAR);
  if (image == nullptr) Fail("cannot wrap a picture");
  image->Type = VIPS_INTERPRETATION_sRGB;
  return OwnedVipsImage(image);
}

Raster Rendered(const OwnedVipsImage& image) {
  Raster raster;
  raster.width = static_cast<std::size_t>(vips_image_get_width(image.get()));
  raster.height = static_cast<std::size_t>(vips_image_get_height(image.get()));
  std::size_t size = 0;
  const std::unique_ptr<void, decltype(&g_free)> memory(vips_image_write_to_memory(image.get(), &size), g_free);
  if (memory == nullptr) Fail("cannot decode");
  if (size != raster.width * raster.height * 3) throw std::runtime_error("cannot decode: not three samples a pixel");
  const auto* const first = static_cast<const std::uint8_t*>(memory.get());
  raster.samples.assign(first, first + size);
  return raster;
}

OwnedVipsImage ThreeSamples(OwnedVipsImage image) {
  VipsImage* out = nullptr;
  OwnedVipsImage colour =
      Taken(vips_colourspace(image.get(), &out, VIPS_INTERPRETATION_sRGB, nullptr), out, "cannot convert");
  if (vips_image_hasalpha(colour.get())) {
    colour = Taken(vips_flatten(colour.get(), &out, nullptr), out, "cannot convert");
  }
  return Taken(vips_cast_uchar(colour.get(), &out, nullptr), out, "cannot convert");
}

Colour At(const Raster& raster, std::size_t x, std::size_t y) {
  const auto pixel = raster.Pixels().Run(y, 3 * x, 3);
  return {pixel[0], pixel[1], pixel[2]};
}

void Set(Raster& raster, std::size_t x, std::size_t y, Colour colour) {
  std::ranges::copy(colour, raster.Pixels().Run(y, 3 * x, 3).begin());
}

Raster Blank(std::size_t width, std::size_t height) {
  return {width, height, std::vector<std::uint8_t>(width * height * 3)};
}

std::uint8_t Luma(const Colour& colour) {
  return static_cast<std::uint8_t>((299 * colour[0] + 587 * colour[1] + 114 * colour[2] + 500) / 1000);
}

}  // namespace

Raster ReadRaster(const std::string& path) {
  VipsImage* const file = vips_image_new_from_file(path.c_str(), "access", VIPS_ACCESS_SEQUENTIAL, nullptr);
  if (file == nullptr) Fail(path);
  return Rendered(ThreeSamples(OwnedVipsImage(file)));
}

Raster Scaled(const Raster& raster, double scale) {
  const OwnedVipsImage image = View(raster);
  VipsImage* out = nullptr;
  const VipsKernel kernel = scale > 1 ? VIPS_KERNEL_LINEAR : VIPS_KERNEL_CUBIC;
  return Rendered(Taken(vips_resize(image.get(), &out, scale, "kernel", kernel, nullptr), out, "cannot scale"));
}

Raster ScaledTo(const Raster& raster, double longSide) {
  return Scaled(raster, longSide / static_cast<double>(raster.LongSide()));
}

Raster Turned(const Raster& raster, double degrees, Colour background) {
  const OwnedVipsImage image = View(raster);
  const std::array<double, 3> fill = {static_cast<double>(background[0]), static_cast<double>(background[1]),
                                      static_cast<double>(background[2])};
  const std::unique_ptr<VipsArrayDouble, void (*)(VipsArrayDouble*)> colour(
      vips_array_double_new(fill.data(), 3), [](VipsArrayDouble* array) { vips_area_unref(VIPS_AREA(array)); });
  VipsImage* out = nullptr;
  return Rendered(
      Taken(vips_rotate(image.get(), &out, degrees, "background", colour.get(), nullptr), out, "cannot turn"));
}

Raster Compressed(const Raster& raster, int jpegQuality) {
  const OwnedVipsImage image = View(raster);
  void* bytes = nullptr;
  std::size_t size = 0;
  if (vips_jpegsave_buffer(image.get(), &bytes, &size, "Q", jpegQuality, nullptr) != 0) Fail("cannot compress");
  const std::unique_ptr<void, decltype(&g_free)> owner(bytes, g_free);
  VipsImage* out = nullptr;
  return Rendered(Taken(vips_jpegload_buffer(bytes, size, &out, nullptr), out, "cannot decode"));
}

Raster Cropped(const Raster& raster, std::size_t left, std::size_t top, std::size_t width, std::size_t height) {
  Raster part = Blank(width, height);
  for (std::size_t y = 0; y < height; ++y) {
    std::ranges::copy(raster.Pixels().Run(top + y, 3 * left, 3 * width), part.Pixels().Row(y).begin());
  }
  return part;
}

Raster Framed(const Raster& raster, std::array<std::size_t, 4> leftTopRightBottom, Colour background) {
  const auto [left, top, right, bottom] = leftTopRightBottom;
  Raster framed = Blank(left + raster.width + right, top + raster.height + bottom);
  for (std::size_t y = 0; y < framed.height; ++y) {
    for (std::size_t x = 0; x < framed.width; ++x) {
      const bool inside = x >= left && x < left + raster.width && y >= top && y < top + raster.height;
      Set(framed, x, y, inside ? At(raster, x - left, y - top) : background);
    }
  }
  return framed;
}

Raster Upright(const Raster& raster) {
  Raster turned = Blank(raster.height, raster.width);
  for (std::size_t y = 0; y < turned.height; ++y) {
    for (std::size_t x = 0; x < turned.width; ++x) Set(turned, x, y, At(raster, y, raster.height - 1 - x));
  }
  return turned;
}

SourcePicture ToSource(const Raster& raster, Depth depth, std::int32_t resolution) {
  const std::size_t samples = depth.colour ? 3 : 1;
  const std::size_t sampleBytes = depth.wide ? 2 : 1;
  SourcePicture source;
  source.width = static_cast<std::int32_t>(raster.width);
  source.height = static_cast<std::int32_t>(raster.height);
  source.bitsPerPixel = static_cast<std::int32_t>(samples * sampleBytes * 8);
  source.rowBytes = source.width * source.bitsPerPixel / 8;
  source.resolution = resolution;
  source.pixels.resize(raster.width * raster.height * samples * sampleBytes);
  std::uint8_t* out = source.pixels.data();
  for (std::size_t i = 0; i < raster.samples.size(); i += 3) {
    const Colour colour = {raster.samples[i], raster.samples[i + 1], raster.samples[i + 2]};
    for (std::size_t s = 0; s < samples; ++s) {
      // A 16-bit sample is the 8-bit sample twice (x 257), which is the same in both byte orders.
      const std::uint8_t sample = depth.colour ? colour[s] : Luma(colour);
      for (std::size_t b = 0; b < sampleBytes; ++b) *out++ = sample;
    }
  }
  return source;
}

}  // namespace catalogcore::tools
