// The one way to pixels: rows of bytes, a stride apart, that know where they end.
#ifndef CATALOGCORE_SCENE_PIXEL_VIEW_H_
#define CATALOGCORE_SCENE_PIXEL_VIEW_H_

#include <cassert>
#include <cstddef>
#include <cstdint>
#include <span>

namespace catalogcore {

// A view of rows x stride bytes; owns nothing. Byte is std::uint8_t, or const std::uint8_t to read only.
template <typename Byte>
class BasicPixelView {
 public:
  // REQUIRES: rows and stride are not negative, and `first` points to at least rows * stride bytes.
  BasicPixelView(Byte* first, std::int32_t rows, std::int32_t stride)
      : first_(first), rows_(rows), stride_(static_cast<std::size_t>(stride)) {
    assert(rows >= 0 && stride >= 0);
  }

  std::int32_t Rows() const { return rows_; }

  // The bytes of row y, padding included. REQUIRES: 0 <= y < Rows().
  std::span<Byte> Row(std::int32_t y) const { return Run(y, 0, stride_); }

  // `count` bytes of row y, from byte `first` of the row on. REQUIRES: they lie in the row.
  std::span<Byte> Run(std::int32_t y, std::size_t first, std::size_t count) const {
    assert(y >= 0 && y < rows_ && first <= stride_ && count <= stride_ - first);
    return {first_ + static_cast<std::size_t>(y) * stride_ + first, count};
  }

 private:
  Byte* first_;
  std::int32_t rows_;
  std::size_t stride_;
};

using PixelView = BasicPixelView<const std::uint8_t>;
using MutablePixelView = BasicPixelView<std::uint8_t>;

}  // namespace catalogcore

#endif  // CATALOGCORE_SCENE_PIXEL_VIEW_H_
