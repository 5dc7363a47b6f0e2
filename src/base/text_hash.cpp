#include "base/text_hash.h"

#include <sys/random.h>

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstring>
#include <random>

namespace catalogcore {

namespace {

// Texts are processed in words of eight bytes. The bytes that do not fill a word come first.
static_assert(std::endian::native == std::endian::little, "a text's first byte is a word's lowest");
constexpr std::size_t kWordBytes = sizeof(std::uint64_t);

// A word with this byte eight times.
constexpr std::uint64_t InEveryByte(std::uint64_t byte) { return byte * 0x0101010101010101u; }

std::uint64_t LoadWord(const char* bytes) {
  std::uint64_t word = 0;
  std::memcpy(&word, bytes, kWordBytes);
  return word;
}

// The first size % kWordBytes bytes, in the high bytes of the word; the low bytes are 0.
std::uint64_t LoadFirstWord(const char* text, std::size_t size) {
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

// Converts the upper-case ASCII letters to lower case. The sums do not carry into the next byte, because their operands
// have seven bits.
constexpr std::uint64_t FoldWord(std::uint64_t word) {
  const std::uint64_t low = word & InEveryByte(0x7F);
  const std::uint64_t fromA = low + InEveryByte(0x80 - 'A');
  const std::uint64_t beyondZ = low + InEveryByte(0x7F - 'Z');
  const std::uint64_t isUpper = fromA & ~beyondZ & ~word & InEveryByte(0x80);
  return word | isUpper >> 2;  // 0x80 becomes 0x20, the bit that distinguishes the cases of a letter
}

constexpr std::uint32_t kFactor = 137;
constexpr std::uint32_t kFactor2 = kFactor * kFactor;
constexpr std::uint32_t kFactor4 = kFactor2 * kFactor2;
constexpr std::uint32_t kFactor8 = kFactor4 * kFactor4;

// The hash of eight bytes of 128.
constexpr std::uint32_t kBias = 128 * (1 + kFactor) * (1 + kFactor2) * (1 + kFactor4);

// The hash of eight bytes. Combines bytes to pairs in 16 bits each, pairs to fours in 32 bits each, then the two fours.
// Adds 128 to every byte, so that no number is negative, and subtracts the sum of these at the end.
std::uint32_t HashWord(std::uint64_t word) {
  constexpr std::uint64_t kOneOfTwoBytes = 0x00FF00FF00FF00FFu, kTwoOfFourBytes = 0x0000FFFF0000FFFFu;
  static_assert(255 * (1 + kFactor) <= 0xFFFF && 0xFFFFu <= 0xFFFFFFFFu / (1 + kFactor2), "no pair overflows");
  const std::uint64_t raised = word ^ InEveryByte(0x80);
  const std::uint64_t pairs = (raised & kOneOfTwoBytes) * kFactor + (raised >> 8 & kOneOfTwoBytes);
  const std::uint64_t fours = (pairs & kTwoOfFourBytes) * kFactor2 + (pairs >> 16 & kTwoOfFourBytes);
  return static_cast<std::uint32_t>(fours) * kFactor4 + static_cast<std::uint32_t>(fours >> 32) - kBias;
}

__extension__ using Product = unsigned __int128;

Product Multiply(std::uint64_t a, std::uint64_t b) { return static_cast<Product>(a) * b; }

bool DrawFromSystem(HashKey& key) {
  auto* const bytes = reinterpret_cast<char*>(&key);
  std::size_t drawn = 0;
  while (drawn < sizeof key) {
    const ssize_t more = getrandom(bytes + drawn, sizeof key - drawn, GRND_NONBLOCK);
    if (more <= 0) return false;
    drawn += static_cast<std::size_t>(more);
  }
  return true;
}

// Used if the system's random numbers are missing or not ready. The time and the randomised address are hard to guess,
// but not secret.
void DrawFromTimeAndPlace(HashKey& key) {
  const auto time = std::chrono::system_clock::now().time_since_epoch().count();
  const auto place = reinterpret_cast<std::uintptr_t>(&key);
  std::mt19937_64 random(static_cast<std::uint64_t>(time) ^ std::uint64_t{place} << 20);
  for (std::uint64_t& word : key.words) word = random();
  for (std::uint64_t& word : key.end) word = random();
}

}  // namespace

std::uint32_t ExactHash(const char* text, std::size_t size) {
  std::uint32_t hash = HashWord(LoadFirstWord(text, size));  // leading zeros do not change the hash
  for (std::size_t at = size % kWordBytes; at < size; at += kWordBytes) {
    hash = hash * kFactor8 + HashWord(LoadWord(text + at));
  }
  return hash;
}

bool EqualFolded(const char* a, const char* b, std::size_t size) {
  if (FoldWord(LoadFirstWord(a, size)) != FoldWord(LoadFirstWord(b, size))) return false;
  for (std::size_t at = size % kWordBytes; at < size; at += kWordBytes) {
    if (FoldWord(LoadWord(a + at)) != FoldWord(LoadWord(b + at))) return false;
  }
  return true;
}

std::uint32_t FoldedHash(const char* text, std::size_t size, const HashKey& key) {
  const std::size_t hashed = std::min(size, HashKey::kTextBytes);
  const std::uint64_t* words = key.words.data();
  // Texts of different sizes differ in the first factor. Texts of one size have the same number of products.
  Product sum = Multiply(words[0] + size, words[1] + FoldWord(LoadFirstWord(text, hashed)));
  std::size_t at = hashed % kWordBytes;
  for (words += 2; at + 2 * kWordBytes <= hashed; at += 2 * kWordBytes, words += 2) {
    sum += Multiply(words[0] + FoldWord(LoadWord(text + at)), words[1] + FoldWord(LoadWord(text + at + kWordBytes)));
  }
  if (at < hashed) sum += Multiply(words[0] + FoldWord(LoadWord(text + at)), words[1]);

  std::uint64_t end = key.end[4];
  for (std::size_t i = 0; i < 4; ++i) end += key.end[i] * static_cast<std::uint32_t>(sum >> 32 * i);
  return static_cast<std::uint32_t>(end >> 32);
}

const HashKey& ProcessHashKey() {
  static const HashKey key = [] {
    HashKey drawn{};
    if (!DrawFromSystem(drawn)) DrawFromTimeAndPlace(drawn);
    return drawn;
  }();
  return key;
}

}  // namespace catalogcore
