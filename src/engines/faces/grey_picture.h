// Pictures of one 8-bit grey sample a pixel, rows without padding.
#ifndef CATALOGCORE_ENGINES_FACES_GREY_PICTURE_H_
#define CATALOGCORE_ENGINES_FACES_GREY_PICTURE_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace catalogcore::faces {

struct PictureSize {
  std::int32_t width = 0;
  std::int32_t height = 0;

  std::size_t Area() const { return static_cast<std::size_t>(width) * static_cast<std::size_t>(height); }
  bool operator==(const PictureSize&) const = default;
};

// Looks at a picture that another owns. Invariant: `pixels` reaches size.Area() bytes.
struct GreyView {
  PictureSize size;
  const std::uint8_t* pixels = nullptr;

  std::span<const std::uint8_t> Row(std::int32_t y) const {
    const auto width = static_cast<std::size_t>(size.width);
    return {pixels + static_cast<std::size_t>(y) * width, width};
  }
};

struct GreyPicture {
  PictureSize size;
  std::vector<std::uint8_t> pixels;

  GreyView View() const { return {size, pixels.data()}; }
};

// The picture at half its size, each pixel the mean of four; a last odd row or column is dropped.
// REQUIRES: both sides are at least 2.
GreyPicture Halve(const GreyView& picture);

}  // namespace catalogcore::faces

#endif  // CATALOGCORE_ENGINES_FACES_GREY_PICTURE_H_
