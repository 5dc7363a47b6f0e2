#include "app/picture_format.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace catalogcore::app {
namespace {

using namespace std::string_view_literals;

struct Signature {
  const char* format;
  std::size_t offset;
  std::string_view bytes;
};

// The first that matches counts.
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

// Two letters alone would take texts for pictures; the four bytes behind the file's size are 0.
bool IsBmp(std::string_view start) { return start.substr(0, 2) == "BM" && start.substr(6, 4) == "\0\0\0\0"sv; }

const char* FormatOf(std::string_view start) {
  if (IsBmp(start)) return "BMP";
  for (const Signature& signature : kSignatures) {
    if (start.substr(signature.offset, signature.bytes.size()) == signature.bytes) return signature.format;
  }
  return nullptr;
}

}  // namespace

std::string WhyNotDecoded(std::span<const std::uint8_t, 12> start) {
  std::string bytes(start.size(), '\0');
  std::transform(start.begin(), start.end(), bytes.begin(), [](std::uint8_t byte) { return static_cast<char>(byte); });
  const char* const format = FormatOf(bytes);
  return format ? std::string(format) + " is not a supported format (JPEG, PNG, TIFF, WebP and HEIF are)"
                : "not an image file";
}

}  // namespace catalogcore::app
