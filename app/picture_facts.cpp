// A resolution is worth something only if it tells the size of the paper. It counts when all of this holds:
//
// - The file states it, with a unit. libvips gives every image a resolution, so its number alone says nothing.
// - No camera took the picture: a camera writes a number that means nothing, 72, 180, 300 or 350. It is known by its EXIF
//   data: the maker, or how it exposed.
// - It is none of a screen, 72 or 96, which programs write for want of a better one.
// - It lies in the range in which scanners work, from 75 (below it there are only screens) to 9600.
// - Across and down agree but for a tenth; a fax has 204 by 196. It is their mean.
//
// Where it stands:
//
// - JPEG: EXIF, and if that does not count, the JFIF segment: some writers fill EXIF with 72 for form's sake.
// - PNG: the pHYs chunk. Without a unit it tells the shape of pixels only; libvips does not pass that on.
// - TIFF: its own fields; libvips names a unit only if the file has resolution and unit.
// - WebP, HEIF: EXIF.
#include "app/picture_resolution.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <string_view>

namespace catalogcore::app {
namespace {

constexpr double kMillimetresPerInch = 25.4;

struct Density {  // dots per inch
  double across = 0;
  double down = 0;
};

bool IsFromCamera(VipsImage* header) {
  for (const char* const field :
       {"exif-ifd0-Make", "exif-ifd2-ExposureTime", "exif-ifd2-FNumber", "exif-ifd2-ShutterSpeedValue",
        "exif-ifd2-ApertureValue", "exif-ifd2-ISOSpeedRatings", "exif-ifd2-FocalLength"}) {
    if (vips_image_get_typeof(header, field) != 0) return true;
  }
  return false;
}

// Of "299999/1000 (299.999, Rational, ...)"; 0 if it is none.
double Quotient(std::string_view text) {
  const char* const end = text.data() + text.size();
  std::uint32_t numerator = 0;
  std::uint32_t denominator = 0;
  const char* const slash = std::from_chars(text.data(), end, numerator).ptr;
  if (slash == end || *slash != '/') return 0;
  std::from_chars(slash + 1, end, denominator);
  return denominator == 0 ? 0 : static_cast<double>(numerator) / denominator;
}

Density OfExif(VipsImage* header) {
  const bool perCentimetre = ExifText(header, "exif-ifd0-ResolutionUnit").starts_with("3");  // else inch
  const double factor = perCentimetre ? kMillimetresPerInch / 10 : 1;
  return {Quotient(ExifText(header, "exif-ifd0-XResolution")) * factor,
          Quotient(ExifText(header, "exif-ifd0-YResolution")) * factor};
}

std::uint32_t BigEndian(std::span<const std::uint8_t> bytes) {
  std::uint32_t value = 0;
  for (const std::uint8_t byte : bytes) value = value << 8 | byte;
  return value;
}

bool IsText(std::span<const std::uint8_t> bytes, std::string_view text) {
  return std::equal(bytes.begin(), bytes.end(), text.begin(), text.end());
}

// ITU-T T.871: the segment follows the first marker.
Density OfJfif(const PictureFile& file) {
  std::array<std::uint8_t, 18> start = {};
  if (!file.Read(0, start) || start[3] != 0xE0 || !IsText(std::span(start).subspan(6, 4), "JFIF")) return {};
  const std::uint8_t unit = start[13];
  if (unit != 1 && unit != 2) return {};
  const double factor = unit == 2 ? kMillimetresPerInch / 10 : 1;
  return {BigEndian(std::span(start).subspan(14, 2)) * factor, BigEndian(std::span(start).subspan(16, 2)) * factor};
}

// PNG, 11.3.4.3: a chunk is its length, its name, that many bytes, and a sum; this one stands before the pixels.
Density OfPng(const PictureFile& file) {
  constexpr int kMostChunks = 1000;  // nobody has so many before the pixels
  std::uint64_t at = 8;
  for (int chunk = 0; chunk < kMostChunks; ++chunk) {
    std::array<std::uint8_t, 17> bytes = {};
    if (!file.Read(at, bytes)) return {};
    const auto name = std::span(bytes).subspan(4, 4);
    if (IsText(name, "IDAT")) return {};
    if (IsText(name, "pHYs")) {
      const bool perMetre = bytes[16] == 1;
      const double factor = perMetre ? kMillimetresPerInch / 1000 : 0;
      return {BigEndian(std::span(bytes).subspan(8, 4)) * factor, BigEndian(std::span(bytes).subspan(12, 4)) * factor};
    }
    at += 12 + std::uint64_t{BigEndian(std::span(bytes).first(4))};
  }
  return {};
}

Density OfTiff(VipsImage* header) {
  if (vips_image_get_typeof(header, VIPS_META_RESOLUTION_UNIT) == 0) return {};
  return {vips_image_get_xres(header) * kMillimetresPerInch, vips_image_get_yres(header) * kMillimetresPerInch};
}

std::int32_t IfScanned(Density density) {
  if (!(density.across > 0) || !(density.down > 0)) return 0;
  const auto [less, more] = std::minmax(density.across, density.down);
  if (more > less * 1.1 || more > 10000) return 0;
  const auto mean = static_cast<std::int32_t>(std::lround((less + more) / 2));
  return mean < 75 || mean > 9600 || mean == 96 ? 0 : mean;
}

}  // namespace

std::int32_t StatedResolution(const PictureFile& file, VipsImage* header) {
  if (IsFromCamera(header)) return 0;
  switch (file.FileContent()) {
    case Content::kJpeg: {
      const std::int32_t exif = IfScanned(OfExif(header));
      return exif != 0 ? exif : IfScanned(OfJfif(file));
    }
    case Content::kPng:
      return IfScanned(OfPng(file));
    case Content::kTiff:
      return IfScanned(OfTiff(header));
    case Content::kWebP:
    case Content::kHeif:
      break;
  }
  return IfScanned(OfExif(header));
}

std::string ExifText(VipsImage* header, const char* field) {
  const char* text = nullptr;
  if (vips_image_get_typeof(header, field) != VIPS_TYPE_REF_STRING) return {};
  return vips_image_get_string(header, field, &text) == 0 ? text : "";
}

}  // namespace catalogcore::app
