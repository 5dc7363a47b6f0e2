// The facts of a picture: size, resolution and date.
//
// The resolution is used for the size of the paper, so it counts only if a scanner may have written it. All of this must
// hold:
//
// - The file states a resolution with a unit. libvips gives every image a resolution, so the number alone says nothing.
// - No camera took the picture: cameras write an arbitrary number, 72, 180, 300 or 350. EXIF data with the maker or the
//   exposure identify a camera.
// - It is not 72 or 96, the resolutions of screens, which programs write as a default.
// - It is 75 to 9600, the range of scanners.
// - The horizontal and the vertical resolution differ by at most a tenth; a fax has 204 by 196. The mean counts.
//
// The source of the resolution depends on the format:
//
// - JPEG: EXIF; if that resolution does not count, the JFIF segment. Some writers fill EXIF with the default 72.
// - PNG: the pHYs chunk. Without a unit pHYs states only the shape of the pixels; libvips does not pass the unit on.
// - TIFF: its own fields; libvips reports a unit only if the file has both resolution and unit.
// - WebP, HEIF: EXIF.
#include <algorithm>
#include <array>
#include <charconv>
#include <chrono>
#include <cmath>
#include <string_view>

#include "app/picture_file.h"

namespace catalogcore::app {
namespace {

constexpr double kMillimetresPerInch = 25.4;

// The text that libvips makes of an EXIF field ("exif-ifd2-FNumber"); empty if the field is missing.
std::string ExifText(VipsImage* header, const char* field) {
  const char* text = nullptr;
  if (vips_image_get_typeof(header, field) != VIPS_TYPE_REF_STRING) return {};
  return vips_image_get_string(header, field, &text) == 0 ? text : "";
}

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

// The value of "299999/1000 (299.999, Rational, ...)"; 0 for other text.
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
  const bool isPerCentimetre = ExifText(header, "exif-ifd0-ResolutionUnit").starts_with("3");  // else per inch
  const double factor = isPerCentimetre ? kMillimetresPerInch / 10 : 1;
  return {Quotient(ExifText(header, "exif-ifd0-XResolution")) * factor,
          Quotient(ExifText(header, "exif-ifd0-YResolution")) * factor};
}

std::uint32_t BigEndian(std::span<const std::uint8_t> bytes) {
  std::uint32_t value = 0;
  for (const std::uint8_t byte : bytes) value = value << 8 | byte;
  return value;
}

bool Equals(std::span<const std::uint8_t> bytes, std::string_view text) {
  return std::equal(bytes.begin(), bytes.end(), text.begin(), text.end());
}

// ITU-T T.871: the JFIF segment follows the first marker.
Density OfJfif(const PictureFile& file) {
  std::array<std::uint8_t, 18> start = {};
  if (!file.Read(0, start) || start[3] != 0xE0 || !Equals(std::span(start).subspan(6, 4), "JFIF")) return {};
  const std::uint8_t unit = start[13];
  if (unit != 1 && unit != 2) return {};
  const double factor = unit == 2 ? kMillimetresPerInch / 10 : 1;
  return {BigEndian(std::span(start).subspan(14, 2)) * factor, BigEndian(std::span(start).subspan(16, 2)) * factor};
}

// PNG, 11.3.4.3. A chunk is its length, its name, that many bytes, and a checksum; pHYs precedes the pixels.
Density OfPng(const PictureFile& file) {
  constexpr int kMostChunks = 1000;  // far more than any encoder writes before the pixels
  std::uint64_t at = 8;
  for (int chunk = 0; chunk < kMostChunks; ++chunk) {
    std::array<std::uint8_t, 17> bytes = {};
    if (!file.Read(at, bytes)) return {};
    const auto name = std::span(bytes).subspan(4, 4);
    if (Equals(name, "IDAT")) return {};
    if (Equals(name, "pHYs")) {
      const bool isPerMetre = bytes[16] == 1;
      const double factor = isPerMetre ? kMillimetresPerInch / 1000 : 0;
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

// Dots per inch that a scanner may have written, else 0. `header` is the header of the file at full size.
std::int32_t StatedResolution(const PictureFile& file, VipsImage* header) {
  if (IsFromCamera(header)) return 0;
  switch (file.Format()) {
    case PictureFormat::kJpeg: {
      const std::int32_t exif = IfScanned(OfExif(header));
      return exif != 0 ? exif : IfScanned(OfJfif(file));
    }
    case PictureFormat::kPng:
      return IfScanned(OfPng(file));
    case PictureFormat::kTiff:
      return IfScanned(OfTiff(header));
    case PictureFormat::kWebP:
    case PictureFormat::kHeif:
      break;
  }
  return IfScanned(OfExif(header));
}

// "2024-05-31 18:20:05" for EXIF's "2024:05:31 18:20:05 (...)". Empty for an invalid date or one before the first
// photograph: a clock that was never set gives zeros or blanks.
std::string ExifDate(std::string text) {
  constexpr std::string_view kForm = "0000:00:00 00:00:00";
  if (text.size() < kForm.size()) return {};
  text.resize(kForm.size());
  const auto fits = [](char c, char form) { return form == '0' ? c >= '0' && c <= '9' : c == form; };
  if (!std::equal(text.begin(), text.end(), kForm.begin(), fits)) return {};
  const auto number = [&text](std::size_t at, std::size_t digits) { return std::stoi(text.substr(at, digits)); };
  const std::chrono::month month(static_cast<unsigned>(number(5, 2)));
  const std::chrono::day day(static_cast<unsigned>(number(8, 2)));
  const std::chrono::year year(number(0, 4));
  if (!(year / month / day).ok() || year < std::chrono::year(1826)) return {};
  if (number(11, 2) > 23 || number(14, 2) > 59 || number(17, 2) > 59) return {};
  return text.replace(4, 1, "-").replace(7, 1, "-");
}

std::string LocalDate(std::time_t time) {
  std::tm local = {};
  std::array<char, 32> out = {};
  if (localtime_r(&time, &local) == nullptr) return {};
  std::strftime(out.data(), out.size(), "%Y-%m-%d %H:%M:%S", &local);
  return out.data();
}

std::string DateOf(const PictureFile& file, VipsImage* header) {
  for (const char* const field : {"exif-ifd2-DateTimeOriginal", "exif-ifd2-DateTimeDigitized", "exif-ifd0-DateTime"}) {
    if (std::string date = ExifDate(ExifText(header, field)); !date.empty()) return date;
  }
  return LocalDate(file.ChangeTime());
}

}  // namespace

PictureFacts FactsOf(const PictureFile& file, VipsImage* header) {
  PictureFacts facts;
  facts.width = vips_image_get_width(header);
  facts.height = vips_image_get_height(header);
  if (vips_image_get_orientation_swap(header)) std::swap(facts.width, facts.height);
  facts.resolution = StatedResolution(file, header);
  return facts;
}

PictureFacts ReadPictureFacts(const std::filesystem::path& path) {
  const PictureFile file(path);
  return UseLibvips(file, [&file](VipsFailOn) {
    const OwnedImage header = file.Open(VIPS_FAIL_ON_ERROR);
    PictureFacts facts = FactsOf(file, header.get());
    facts.date = DateOf(file, header.get());
    return facts;
  });
}

}  // namespace catalogcore::app
