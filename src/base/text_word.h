// Texts eight bytes at a time.
#ifndef CATALOGCORE_BASE_TEXT_WORD_H_
#define CATALOGCORE_BASE_TEXT_WORD_H_

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace catalogcore {

static_assert(std::endian::native == std::endian::little, "a text's first byte is a word's lowest");

inline constexpr std::size_t kWordBytes = sizeof(std::uint64_t);

// A word with this byte eight times.
constexpr std::uint64_t InEveryByte(std::uint64_t byte) { return byte * 0x0101010101010101u; }

inline std::uint64_t LoadWord(const char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, kWordBytes);
  return word;
}

// The bytes of a text that are left over from whole words, its first ones, behind zeros; 0 if there are none.
inline std::uint64_t LoadFirstWord(const char* text, std::size_t size) {
  const std::size_t over = size % kWordBytes;
  if (over == 0) return 0;
  std::uint64_t word = 0;
  if (size > kWordBytes) {
    word = LoadWord(text);
  } else {
    std::memcpy(&word, text, over);
  }
  return word << 8 * (kWordBytes - over);
}

// Folds the case of the ASCII letters; other bytes stay as they are. No sum carries from one byte into the next, as each
// begins with seven bits.
constexpr std::uint64_t FoldWord(std::uint64_t word) {
  const std::uint64_t low = word & InEveryByte(0x7F);
  const std::uint64_t fromA = low + InEveryByte(0x80 - 'A');
  const std::uint64_t beyondZ = low + InEveryByte(0x7F - 'Z');
  const std::uint64_t isUpper = fromA & ~beyondZ & ~word & InEveryByte(0x80);
  return word | isUpper >> 2;  // 0x80 becomes 0x20, which tells the two cases of a letter apart
}

// Whether the first `size` bytes of both are equal when folded.
inline bool EqualFolded(const char* a, const char* b, std::size_t size) {
  if (FoldWord(LoadFirstWord(a, size)) != FoldWord(LoadFirstWord(b, size))) return false;
  for (std::size_t at = size % kWordBytes; at < size; at += kWordBytes) {
    if (FoldWord(LoadWord(a + at)) != FoldWord(LoadWord(b + at))) return false;
  }
  return true;
}

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_TEXT_WORD_H_
