// Formats that pictures have elsewhere and that are not decoded here, so that a message can name them.
#ifndef CATALOGCORE_APP_PICTURE_FORMAT_H_
#define CATALOGCORE_APP_PICTURE_FORMAT_H_

#include <cstdint>
#include <span>
#include <string>

namespace catalogcore::app {

// Why a file that begins with these bytes, and is in no format that is decoded here, is not: "GIF is not a supported
// format (JPEG, PNG, TIFF, WebP and HEIF are)", or "not an image file" if the bytes are unknown.
std::string WhyNotDecoded(std::span<const std::uint8_t, 12> start);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_FORMAT_H_
