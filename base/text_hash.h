// The two hashes of a text.
#ifndef CATALOGCORE_BASE_TEXT_HASH_H_
#define CATALOGCORE_BASE_TEXT_HASH_H_

#include <cstddef>
#include <cstdint>

// The hash of the system, before it is reduced to a bucket: h = h * 137 + the byte as a signed number, modulo 2^32.
std::uint32_t ExactHash(const char* text, std::size_t size);

// The same for all spellings of a text that differ in the case of ASCII letters alone; another for each seed.
std::uint64_t FoldedHash(const char* text, std::size_t size, std::uint64_t seed);

#endif  // CATALOGCORE_BASE_TEXT_HASH_H_
