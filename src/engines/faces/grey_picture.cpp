#include "engines/faces/grey_picture.h"

namespace catalogcore::faces {

GreyPicture Halve(const GreyView& picture) {
  GreyPicture half;
  half.size = {picture.size.width / 2, picture.size.height / 2};
  half.pixels.reserve(half.size.Area());
  for (std::int32_t y = 0; y < half.size.height; ++y) {
    const auto upper = picture.Row(2 * y);
    const auto lower = picture.Row(2 * y + 1);
    for (std::size_t x = 0; x < static_cast<std::size_t>(half.size.width); ++x) {
      const int sum = upper[2 * x] + upper[2 * x + 1] + lower[2 * x] + lower[2 * x + 1];
      half.pixels.push_back(static_cast<std::uint8_t>((sum + 2) / 4));
    }
  }
  return half;
}

}  // namespace catalogcore::faces
