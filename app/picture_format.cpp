#include "app/picture_format.h"

#include <vips/vips.h>

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "app/picture.h"

namespace catalogcore::app {
namespace {

using namespace std::string_view_literals;

struct Signature {
  const char* format;
  std::size_t offset;
  std::string_view bytes;
};

// Formats that are not decoded. The first match counts.
constexpr Signature kSignatures[] = {
    {"GIF", 0, "GIF8"sv},
    {"PDF", 0, "%PDF-"sv},
    {"Photoshop", 0, "8BPS"sv},
    {"GIMP", 0, "gimp xcf"sv},
    {"OpenEXR", 0, "\x76\x2F\x31\x01"sv},
    {"JPEG 2000", 0, "\0\0\0\x0CjP  \r\n\x87\n"sv},
    {"JPEG 2000", 0, "\xFF\x4F\xFF\x51"sv},
    {"JPEG XL", 0, "\0\0\0\x0CJXL \r\n\x87\n"sv},
    {"JPEG XL", 0, "\xFF\x0A"sv},
    {"Fujifilm raw", 0, "FUJIFILMCCD"sv},
    {"Canon raw", 4, "ftypcrx "sv},
    {"HEIF", 4, "ftyphe"sv},
    {"HEIF", 4, "ftypmif1"sv},
    {"AVIF", 4, "ftypavi"sv},
    {"a film", 4, "ftyp"sv},
};

std::string TextOf(std::span<const std::uint8_t, 12> start) {
  std::string text(start.size(), '\0');
  std::transform(start.begin(), start.end(), text.begin(), [](std::uint8_t byte) { return static_cast<char>(byte); });
  return text;
}

// "BM" alone also begins texts; the four bytes behind the file size of a bitmap are 0.
bool IsBmp(std::string_view start) { return start.substr(0, 2) == "BM" && start.substr(6, 4) == "\0\0\0\0"sv; }

const char* NameOfOtherFormat(std::string_view start) {
  if (IsBmp(start)) return "BMP";
  for (const Signature& signature : kSignatures) {
    if (start.substr(signature.offset, signature.bytes.size()) == signature.bytes) return signature.format;
  }
  return nullptr;
}

// Whether this libvips decodes HEIF and AVIF.
bool CanDecodeHeif() { return vips_type_find("VipsOperation", "heifload_source") != 0; }

// HEIF is ISO/IEC 23008-12. These brands of HEIF and AVIF stand for pictures; films begin with the same bytes.
bool IsHeif(std::string_view start) {
  const auto brands = {"heic"sv, "heix"sv, "heim"sv, "heis"sv, "hevc"sv,
                       "hevx"sv, "mif1"sv, "msf1"sv, "avif"sv, "avis"sv};
  return start.substr(4, 4) == "ftyp" && std::ranges::find(brands, start.substr(8, 4)) != brands.end();
}

}  // namespace

bool HasPictureName(const std::filesystem::path& file) {
  std::string extension = file.extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
  for (const char* const known : {".jpg", ".jpeg", ".jpe", ".jfif", ".png", ".tif", ".tiff", ".webp"}) {
    if (extension == known) return true;
  }
  const bool isHeif = extension == ".heic" || extension == ".heif" || extension == ".hif" || extension == ".avif";
  return isHeif && CanDecodeHeif();
}

std::optional<PictureFormat> FormatOf(std::span<const std::uint8_t, 12> bytes) {
  const std::string start = TextOf(bytes);
  if (start.starts_with("\xFF\xD8\xFF")) return PictureFormat::kJpeg;
  if (start.starts_with("\x89PNG\r\n\x1A\n")) return PictureFormat::kPng;
  if (start.starts_with("RIFF") && start.ends_with("WEBP")) return PictureFormat::kWebP;
  for (const std::string_view tiff : {"II*\0"sv, "MM\0*"sv, "II+\0"sv, "MM\0+"sv}) {
    if (start.starts_with(tiff)) return PictureFormat::kTiff;
  }
  if (IsHeif(start) && CanDecodeHeif()) return PictureFormat::kHeif;
  return std::nullopt;
}

std::string WhyNotDecoded(std::span<const std::uint8_t, 12> start) {
  const char* const format = NameOfOtherFormat(TextOf(start));
  return format ? std::string(format) + " is not a supported format (JPEG, PNG, TIFF, WebP and HEIF are)"
                : "not an image file";
}

}  // namespace catalogcore::app
