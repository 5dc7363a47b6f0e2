// The two hashes of a text.
#ifndef CATALOGCORE_BASE_TEXT_HASH_H_
#define CATALOGCORE_BASE_TEXT_HASH_H_

#include <array>
#include <cstddef>
#include <cstdint>

namespace catalogcore {

// The hash of the system, before it is reduced to a bucket: h = h * 137 + the byte as a signed number, modulo 2^32.
std::uint32_t ExactHash(const char* text, std::size_t size);

// Random numbers.
struct HashKey {
  static constexpr std::size_t kTextBytes = 4096;
  std::array<std::uint64_t, kTextBytes / sizeof(std::uint64_t) + 2> words;
  std::array<std::uint64_t, 5> end;
};

// Equal for all spellings of a text that differ in the case of ASCII letters alone. Of what lies beyond kTextBytes only
// the size counts.
//
// Any two other texts have one hash under at most one in 2^31 of all keys, so that nobody who does not know the key can
// choose texts that share their hash. That is proven, and takes less time than a cryptographic hash: NH (J. Black,
// S. Halevi, H. Krawczyk, T. Krovetz, P. Rogaway, "UMAC: fast and secure message authentication", 1999), which makes
// 128 bits of a text, and of those a multilinear hash (J. L. Carter, M. N. Wegman, "Universal classes of hash functions",
// 1979).
std::uint32_t FoldedHash(const char* text, std::size_t size, const HashKey& key);

// This process's own key, drawn at the first call.
const HashKey& ProcessHashKey();

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_TEXT_HASH_H_
