// Rows of bytes a stride apart: how every module reaches the pixels of a picture.
#ifndef CATALOGCORE_BASE_PIXEL_VIEW_H_
#define CATALOGCORE_BASE_PIXEL_VIEW_H_

#include <cassert>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <span>
#include <utility>

namespace catalogcore {

// A view of rows x stride bytes that it does not own. Byte is std::uint8_t, or const std::uint8_t for a view that only
// reads. Debug builds check every access against the bounds.
template <typename Byte>
class BasicPixelView {
 public:
  BasicPixelView() = default;

  // REQUIRES: rows and stride are not negative and fit in 31 bits; `first` points to at least rows * stride bytes.
  BasicPixelView(Byte* first, std::integral auto rows, std::integral auto stride)
      : first_(first), rows_(static_cast<std::int32_t>(rows)), stride_(static_cast<std::size_t>(stride)) {
    assert(std::in_range<std::int32_t>(rows) && rows >= 0 && std::in_range<std::int32_t>(stride) && stride >= 0);
  }

  std::int32_t Rows() const { return rows_; }
  std::int32_t Stride() const { return static_cast<std::int32_t>(stride_); }

  // The bytes of row y, padding included. REQUIRES: 0 <= y < Rows().
  std::span<Byte> Row(std::integral auto y) const { return Run(y, 0, stride_); }

  // `count` bytes of row y that begin at byte `first` of the row. REQUIRES: they lie in the row.
  std::span<Byte> Run(std::integral auto y, std::size_t first, std::size_t count) const {
    assert(std::cmp_greater_equal(y, 0) && std::cmp_less(y, rows_) && first <= stride_ && count <= stride_ - first);
    return {first_ + static_cast<std::size_t>(y) * stride_ + first, count};
  }

 private:
  Byte* first_ = nullptr;
  std::int32_t rows_ = 0;
  std::size_t stride_ = 0;
};

using PixelView = BasicPixelView<const std::uint8_t>;
using MutablePixelView = BasicPixelView<std::uint8_t>;

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_PIXEL_VIEW_H_
