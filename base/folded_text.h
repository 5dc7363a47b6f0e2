// Texts as equality of keys sees them: the letter case of the ASCII letters is folded, whatever the locale; bytes from
// 0x80 on stay as they are.
#ifndef CATALOGCORE_BASE_FOLDED_TEXT_H_
#define CATALOGCORE_BASE_FOLDED_TEXT_H_

#include <cstddef>
#include <cstdint>

// Whether the first `size` bytes of both are equal when folded.
bool EqualFolded(const char* a, const char* b, std::size_t size);

// A hash of the first `size` bytes, folded: the same for all spellings of one text, another for each `seed`.
std::uint64_t FoldedHash(const char* text, std::size_t size, std::uint64_t seed);

#endif  // CATALOGCORE_BASE_FOLDED_TEXT_H_
