#include "base/text_hash.h"

#include "base/text_word.h"

namespace {

constexpr std::uint32_t kFactor = 137;
constexpr std::uint32_t kFactor2 = kFactor * kFactor;
constexpr std::uint32_t kFactor4 = kFactor2 * kFactor2;
constexpr std::uint32_t kFactor8 = kFactor4 * kFactor4;

// What eight bytes of 128 hash to.
constexpr std::uint32_t kBias = 128 * (1 + kFactor) * (1 + kFactor2) * (1 + kFactor4);

// The hash of eight bytes alone: of pairs of bytes in 16 bits each, then of pairs of those in 32, then of the two.
// So that no number is negative, every byte is raised by 128, which the end takes off again.
std::uint32_t HashWord(std::uint64_t word) {
  constexpr std::uint64_t kOneOfTwoBytes = 0x00FF00FF00FF00FFu, kTwoOfFourBytes = 0x0000FFFF0000FFFFu;
  static_assert(255 * (1 + kFactor) <= 0xFFFF && 0xFFFFu <= 0xFFFFFFFFu / (1 + kFactor2), "no pair overflows");
  const std::uint64_t raised = word ^ InEveryByte(0x80);
  const std::uint64_t pairs = (raised & kOneOfTwoBytes) * kFactor + (raised >> 8 & kOneOfTwoBytes);
  const std::uint64_t fours = (pairs & kTwoOfFourBytes) * kFactor2 + (pairs >> 16 & kTwoOfFourBytes);
  return static_cast<std::uint32_t>(fours) * kFactor4 + static_cast<std::uint32_t>(fours >> 32) - kBias;
}

// Both halves of the product, one over the other: each bit of the number reaches all of the result.
std::uint64_t Mix(std::uint64_t number) {
  constexpr std::uint64_t kGolden = 0x9E3779B97F4A7C15u;  // 2^64 / the golden ratio: Knuth's multiplicative hashing
  __extension__ using Product = unsigned __int128;
  const Product product = static_cast<Product>(number) * kGolden;
  return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

}  // namespace

std::uint32_t ExactHash(const char* text, std::size_t size) {
  std::uint32_t hash = HashWord(LoadFirstWord(text, size));  // the zeros before it hash to nothing
  for (std::size_t at = size % kWordBytes; at < size; at += kWordBytes) {
    hash = hash * kFactor8 + HashWord(LoadWord(text + at));
  }
  return hash;
}

std::uint64_t FoldedHash(const char* text, std::size_t size, std::uint64_t seed) {
  std::uint64_t hash = Mix((seed ^ size) + FoldWord(LoadFirstWord(text, size)));
  for (std::size_t at = size % kWordBytes; at < size; at += kWordBytes) {
    hash = Mix(hash ^ FoldWord(LoadWord(text + at)));
  }
  return hash;
}
