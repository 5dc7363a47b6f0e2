// The library's string, the buffer that is built from it, and the sizes of their texts.
#ifndef CATALOGCORE_BASE_IDX_STRING_H_
#define CATALOGCORE_BASE_IDX_STRING_H_

#include <cstdint>
#include <cstring>
#include <limits>

namespace catalogcore {

// The number of bytes before the terminator, at most the largest std::int32_t.
inline std::int32_t TextSize(const char* text) {
  constexpr std::size_t kMax = std::numeric_limits<std::int32_t>::max();
  return static_cast<std::int32_t>(strnlen(text, kMax));
}

// The sum of two sizes; -1, an invalid size, if the sum overflows or an operand is negative.
inline std::int32_t CheckedAdd(std::int32_t a, std::int32_t b) {
  const std::int64_t sum = std::int64_t{a} + b;
  return a < 0 || b < 0 || sum > std::numeric_limits<std::int32_t>::max() ? -1 : static_cast<std::int32_t>(sum);
}

// Owns a block of bytes that holds a zero-terminated text. The text is UTF-8, but this class ignores encodings: lengths
// and positions count bytes. Not thread-safe.
//
// Invariants:
// - `buffer` null: the string has no block, `capacity` and `length` are 0, and the text is empty.
// - `buffer` set: the block has `capacity` bytes and one more byte, always zero, so that every text ends;
//   `length` < `capacity`.
// - The text consists of the bytes before the first zero byte. `length` is what the last operation recorded. The two
//   differ after CopyString with a count beyond the end of its text, and after a zero byte was written by operator[] or
//   Replace. Count and the searches use `length`; hash, equality and Text() use the text.
// - `capacity` grows to exactly the size needed and never shrinks, which keeps the store's many short keys compact.
//
// If an allocation fails, the string stays unchanged. A text passed to an operation must not lie in the string's own
// block.
class CIDXString {
 public:
  // The number of buckets of every hash table. GetHashKey returns smaller numbers.
  static constexpr std::uint32_t kBucketCount = 1987;

  CIDXString() = default;
  // An empty string with a block of `size` bytes.
  explicit CIDXString(int size);
  ~CIDXString();
  CIDXString(const CIDXString&) = delete;
  CIDXString& operator=(const CIDXString&) = delete;

  std::int32_t Length() const { return length; }
  std::int32_t Capacity() const { return capacity; }
  // The text, never null; valid until the string changes.
  const char* Text() const { return buffer ? buffer : ""; }

  // Replaces the text and returns its length. Null: returns 0 and changes nothing. Allocation failure: returns -1.
  std::int32_t CopyString(const char* text);

  // Replaces the text by its first `count` bytes (-1: all bytes) and returns `count`, the new length. Bytes beyond the
  // end of a shorter text are zero and count as characters. Null: returns 0 and changes nothing. Allocation failure or
  // another negative count: returns -1.
  std::int32_t CopyString(const char* text, int count);

  // Appends at `length` and returns the new length, measured up to the first zero byte. Null appends the empty text,
  // which gives a string without a block an empty block. Allocation failure: returns -1.
  std::int32_t CatString(const char* text);

  // Removes positions `first` to `last`, both included, and returns the new length. Positions outside the string or
  // in the wrong order: returns 0 and changes nothing.
  std::int32_t TrimMid(int first, int last);

  // Removes one `c` from the end, if present. Returns the length.
  std::int32_t TrimRight(char c);

  // The number of `c` in the first `length` bytes.
  std::int32_t Count(char c) const;

  // Searches for `c` from `start` (-1: 0) upward and returns its position, or the length if not found. Returns a
  // start outside the string unchanged; returns 0 for a string without a block.
  std::int32_t Search(char c, int start) const;

  // Searches for `c` from `start` (-1: the last position) downward and returns its position, or -1 if not found.
  // Returns a start outside the string unchanged; returns 0 for a string without a block.
  std::int32_t SearchReverse(char c, int start) const;

  // Replaces the `from` that Search or SearchReverse finds by `to`. Returns its position, or -1 if not found.
  std::int32_t Replace(char from, char to, int start);
  std::int32_t ReplaceReverse(char from, char to, int start);

  // The byte at `i`, 0 to `length`; for any other `i` the zero byte that ends the text. For a string without a block, a
  // zero byte outside any string.
  char& operator[](int i);

  // Compares the texts, ignoring the case of ASCII letters in every locale.
  bool operator==(const CIDXString& other) const;
  bool operator!=(const CIDXString& other) const { return !(*this == other); }

  // Frees the block.
  void ClearString() { FreeBuffer(); }
  void FreeBuffer();

  // Ensures that the block has at least `size` bytes; a block of `size` bytes or fewer is reallocated to exactly
  // `size`, its last byte set to zero. `length` stays. Returns the block. Allocation failure or a size of 0 or less:
  // returns null and changes nothing.
  char* AllocBuffer(int size);

  // Returns the block, null if there is none. No conversion is needed: text is UTF-8 when it enters the library.
  char* ConvertASCIIToUTF8() { return buffer; }

  // The hash of the text, below kBucketCount: h = h * 137 + the byte as a signed number, modulo 2^32, for each
  // byte. The hash distinguishes upper and lower case, but equality does not: keys that differ only in case are the
  // same key only if they happen to have the same hash.
  std::uint32_t GetHashKey() const;

 protected:
  char* buffer = nullptr;
  std::int32_t capacity = 0;
  std::int32_t length = 0;
};

// A string to which bytes are appended: the text of a catalogue file while it is built.
class CIDXBuffer : public CIDXString {
 public:
  static constexpr std::int32_t kDefaultBlockSize = 256;

  CIDXBuffer() = default;
  // Allocates nothing; no operation uses the block size.
  explicit CIDXBuffer(int size) : blockSize(size) {}

  std::int32_t BlockSize() const { return blockSize; }

  // The same as CopyString(text, count): `count` excludes the terminator, which is added.
  std::int32_t CopyBuffer(const char* text, int count) { return CopyString(text, count); }

  // Appends `count` bytes (-1: the text with its terminator). The last of them counts as the terminator, and the next
  // append overwrites it. Returns the new length: the old length plus `count` less 1. Null, another negative count
  // or allocation failure: returns -1 and changes nothing.
  std::int32_t CatBuffer(const char* text, int count);

 private:
  std::int32_t blockSize = kDefaultBlockSize;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_IDX_STRING_H_
