#include "app/picture.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <string_view>

#include "app/picture_file.h"
#include "app/picture_limits.h"
#include "app/picture_pixels.h"
#include "app/picture_resolution.h"

namespace catalogcore::app {
namespace {

PictureFacts FactsOf(const PictureFile& file, VipsImage* header) {
  PictureFacts facts;
  facts.width = vips_image_get_width(header);
  facts.height = vips_image_get_height(header);
  if (vips_image_get_orientation_swap(header)) std::swap(facts.width, facts.height);
  facts.resolution = StatedResolution(file, header);
  return facts;
}

PictureShape Rendered(VipsImage* image, const PixelRoom& room) {
  PictureShape picture;
  picture.width = vips_image_get_width(image);
  picture.height = vips_image_get_height(image);
  picture.bitsPerPixel = vips_image_get_bands(image) * 8;
  const std::size_t bytes = static_cast<std::size_t>(picture.width) * static_cast<std::size_t>(picture.height) *
                            static_cast<std::size_t>(vips_image_get_bands(image));
  const Image memory(vips_image_new_from_memory(room(bytes), bytes, picture.width, picture.height,
                                                vips_image_get_bands(image), VIPS_FORMAT_UCHAR));
  if (memory == nullptr || vips_image_write(image, memory.get()) != 0) throw LibvipsFailure();
  return picture;
}

// "2024-05-31 18:20:05" of EXIF's "2024:05:31 18:20:05 (...)"; empty if it is no date since there are photographs:
// clocks that were never set give zeros, or blanks.
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

bool HasPictureName(const std::filesystem::path& file) {
  std::string extension = file.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  for (const char* const known : {".jpg", ".jpeg", ".jpe", ".jfif", ".png", ".tif", ".tiff", ".webp"}) {
    if (extension == known) return true;
  }
  const bool heif = extension == ".heic" || extension == ".heif" || extension == ".hif" || extension == ".avif";
  return heif && vips_type_find("VipsOperation", "heifload_source") != 0;
}

PictureShape DecodePicture(const std::filesystem::path& path, const PixelRoom& room) {
  const PictureFile file(path);
  return UseMostOf(file, [&](VipsFailOn failOn) {
    const PictureFacts facts = FactsOf(file, file.Open(VIPS_FAIL_ON_ERROR).get());
    PictureShape picture = Rendered(ReducedPixels(file, failOn, kLongestSide).get(), room);
    const double ratio =
        static_cast<double>(std::max(picture.width, picture.height)) / std::max(facts.width, facts.height);
    picture.resolution = static_cast<std::int32_t>(std::lround(facts.resolution * ratio));
    if (failOn == VIPS_FAIL_ON_NONE) picture.warning = "the image is cut short: its end is missing";
    return picture;
  });
}

Picture DecodePicture(const std::filesystem::path& path) {
  Picture picture;
  const PixelRoom room = [&picture](std::size_t bytes) {
    picture.pixels.resize(bytes);
    return picture.pixels.data();
  };
  static_cast<PictureShape&>(picture) = DecodePicture(path, room);
  return picture;
}

PictureFacts ReadPictureFacts(const std::filesystem::path& path) {
  const PictureFile file(path);
  return UseLibvips(file, [&file](VipsFailOn) {
    const Image header = file.Open(VIPS_FAIL_ON_ERROR);
    PictureFacts facts = FactsOf(file, header.get());
    facts.date = DateOf(file, header.get());
    return facts;
  });
}

}  // namespace catalogcore::app
