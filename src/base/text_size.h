// Sizes of texts as the signed 32-bit numbers that the strings keep, with the sums checked.
#ifndef CATALOGCORE_BASE_TEXT_SIZE_H_
#define CATALOGCORE_BASE_TEXT_SIZE_H_

#include <cstdint>
#include <cstring>
#include <limits>

namespace catalogcore {

// The bytes before the terminator; the largest number there is for a text that has more.
inline std::int32_t TextSize(const char* text) {
  constexpr std::size_t kMax = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(strnlen(text, kMax));
}

// The sum of two sizes; -1, which no block has, when it is too large or either of them is no size.
inline std::int32_t CheckedAdd(std::int32_t a, std::int32_t b) {
  const std::int64_t sum = std::int64_t{a} + b;
  return a < 0 || b < 0 || sum > std::numeric_limits<std::int32_t>::max() ? -1 : static_cast<std::int32_t>(sum);
}

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_TEXT_SIZE_H_
