// The two hashes of a text, and the comparison that ignores letter case.
#ifndef CATALOGCORE_BASE_TEXT_HASH_H_
#define CATALOGCORE_BASE_TEXT_HASH_H_

#include <array>
#include <cstddef>
#include <cstdint>

namespace catalogcore {

// Returns the hash that selects a bucket, before the remainder: h = h * 137 + the byte as a signed number, modulo 2^32.
// Distinguishes upper and lower case.
std::uint32_t ExactHash(const char* text, std::size_t size);

// Returns whether the first `size` bytes of both texts are equal, ignoring the case of ASCII letters.
bool EqualFolded(const char* a, const char* b, std::size_t size);

// Random numbers that select one hash function of the family FoldedHash.
struct HashKey {
  static constexpr std::size_t kTextBytes = 4096;
  std::array<std::uint64_t, kTextBytes / sizeof(std::uint64_t) + 2> words;
  std::array<std::uint64_t, 5> end;
};

// Returns a hash that ignores the case of ASCII letters. Of the bytes beyond kTextBytes only their number counts.
//
// Two texts that differ in more than letter case collide under at most one in 2^31 of all keys. So a user who does not
// know the key cannot choose texts that collide. The bound is proven, and the hash is faster than a cryptographic hash:
// NH (J. Black, S. Halevi, H. Krawczyk, T. Krovetz, P. Rogaway, "UMAC: fast and secure message authentication", 1999)
// reduces the text to 128 bits, and a multilinear hash (J. L. Carter, M. N. Wegman, "Universal classes of hash
// functions", 1979) reduces these to 32.
std::uint32_t FoldedHash(const char* text, std::size_t size, const HashKey& key);

// Returns the key of this process, which the first call draws at random.
const HashKey& ProcessHashKey();

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_TEXT_HASH_H_
