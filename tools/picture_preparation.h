// Prepares a picture as the scene detector does for the recognizer. Training and measuring use only these functions.
#ifndef CATALOGCORE_TOOLS_PICTURE_PREPARATION_H_
#define CATALOGCORE_TOOLS_PICTURE_PREPARATION_H_

#include <array>
#include <cstdint>
#include <vector>

#include "catalogcore.h"
#include "scene/brenn.h"

namespace catalogcore::tools {

// An application's pixels and their description.
struct SourcePicture {
  std::int32_t width = 0;         // pixels, 50 to 4096
  std::int32_t height = 0;        // rows, 50 to 4096
  std::int32_t rowBytes = 0;      // bytes from one row to the next
  std::int32_t bitsPerPixel = 0;  // 8, 16, 24 or 48
  std::int32_t resolution = 0;    // dots per inch, 0: unknown
  std::vector<std::uint8_t> pixels;
};

struct PreparedPicture {
  std::array<unsigned char, kBrennRecordSize> record{};
  std::vector<std::uint8_t> pixels;
};

// The picture as an application describes it to the library; `source` must outlive the record.
IDXDSDATA RecordOf(const SourcePicture& source);

// Reduces the picture toward 75 dots per inch if its resolution allows, applies the tone curve and fills the record.
// Throws std::bad_alloc, or std::runtime_error if the sizes contradict each other.
PreparedPicture PreparePicture(const SourcePicture& source);

}  // namespace catalogcore::tools

#endif  // CATALOGCORE_TOOLS_PICTURE_PREPARATION_H_
