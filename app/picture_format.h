// The formats of picture files: those that are decoded, and those that messages name.
#ifndef CATALOGCORE_APP_PICTURE_FORMAT_H_
#define CATALOGCORE_APP_PICTURE_FORMAT_H_

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace catalogcore::app {

// No other format reaches libvips, which would pass some to libraries that were not written for untrusted files.
enum class PictureFormat { kJpeg, kPng, kTiff, kWebP, kHeif };

// The format of a file with these first bytes. Nothing for a format that is not decoded.
std::optional<PictureFormat> FormatOf(std::span<const std::uint8_t, 12> start);

// Why a file for which FormatOf returns nothing is not decoded: "GIF is not a supported format (JPEG, PNG, TIFF, WebP and
// HEIF are)", or "not an image file" for unknown bytes.
std::string WhyNotDecoded(std::span<const std::uint8_t, 12> start);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_FORMAT_H_
