#include "base/folded_text.h"

#include <cstring>

namespace {

constexpr std::size_t kWordBytes = sizeof(std::uint64_t);

constexpr std::uint64_t InEveryByte(std::uint64_t byte) { return byte * 0x0101010101010101u; }

std::uint64_t LoadWord(const char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, kWordBytes);
  return word;
}

// The word that holds the last bytes of a text: its last eight, or all of a shorter one with zeros behind.
std::uint64_t LoadLastWord(const char* text, std::size_t size) {
  if (size >= kWordBytes) return LoadWord(text + size - kWordBytes);
  std::uint64_t word = 0;
  std::memcpy(&word, text, size);
  return word;
}

// Folds eight bytes at once. No sum below carries from one byte into the next: each begins with the seven low bits.
std::uint64_t FoldWord(std::uint64_t word) {
  const std::uint64_t low = word & InEveryByte(0x7F);
  const std::uint64_t fromA = low + InEveryByte(0x80 - 'A');
  const std::uint64_t beyondZ = low + InEveryByte(0x7F - 'Z');
  const std::uint64_t isUpper = fromA & ~beyondZ & ~word & InEveryByte(0x80);
  return word | isUpper >> 2;  // 0x80 becomes 0x20, which tells the two cases of a letter apart
}

// Both halves of the product, one over the other: every bit of either factor reaches all of the result.
std::uint64_t Mix(std::uint64_t a, std::uint64_t b) {
  __extension__ using Product = unsigned __int128;
  const Product product = static_cast<Product>(a) * b;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

}  // namespace

bool EqualFolded(const char* a, const char* b, std::size_t size) {
  for (std::size_t at = 0; at + kWordBytes <= size; at += kWordBytes) {
    if (FoldWord(LoadWord(a + at)) != FoldWord(LoadWord(b + at))) return false;
  }
  return FoldWord(LoadLastWord(a, size)) == FoldWord(LoadLastWord(b, size));
}

std::uint64_t FoldedHash(const char* text, std::size_t size, std::uint64_t seed) {
  constexpr std::uint64_t kGolden = 0x9E3779B97F4A7C15u;  // 2^64 / the golden ratio: Knuth's multiplicative hashing
  std::uint64_t hash = seed ^ size;
  for (std::size_t at = 0; at + kWordBytes <= size; at += kWordBytes) {
    hash = Mix(hash ^ FoldWord(LoadWord(text + at)), kGolden);
  }
  return Mix(hash ^ FoldWord(LoadLastWord(text, size)), kGolden);
}
