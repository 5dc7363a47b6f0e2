// The library's string: an owned, zero-terminated block of bytes, and the one hash of the system.
#ifndef CATALOGCORE_BASE_IDX_STRING_H_
#define CATALOGCORE_BASE_IDX_STRING_H_

#include <cstdint>

namespace catalogcore {

// Text is UTF-8, but nothing here looks at encodings: lengths and positions count bytes. One thread at a time.
//
// Invariants:
// - `buffer` null: no block, `capacity` and `length` are 0, and the string reads as the empty text.
// - `buffer` set: the block has `capacity` bytes and a zero byte behind them, which nothing overwrites, so that every
//   text ends; `length` < `capacity`.
// - The text is what lies before the first zero byte. `length` is what the last operation recorded; it differs from the
//   text's length after a copy of more bytes than there were, or when a zero byte is written through operator[] or
//   Replace. Count and the searches go by `length`; hash, equality and Text() go by the text.
// - `capacity` grows to exactly the size needed and never shrinks, so that the store's many short keys stay compact.
//
// An operation that finds no memory leaves the string as it was. No text handed in may lie within the string itself.
class CIDXString {
 public:
  // The number of buckets of every hash table; hash keys lie below it.
  static constexpr std::uint32_t kBucketCount = 1987;

  CIDXString() = default;
  // An empty string whose block has room for `size` bytes.
  explicit CIDXString(int size);
  ~CIDXString();
  CIDXString(const CIDXString&) = delete;
  CIDXString& operator=(const CIDXString&) = delete;

  std::int32_t Length() const { return length; }
  std::int32_t Capacity() const { return capacity; }
  // The text, never null; valid until the string changes.
  const char* Text() const { return buffer ? buffer : ""; }

  // Replaces the text and returns its length. Null: returns 0 and changes nothing. No memory: returns -1.
  std::int32_t CopyString(const char* text);

  // Replaces the text by its first `count` bytes (-1: all of it) and returns `count`, which becomes the
  // length also when the text is shorter; the bytes in between are zero and count as characters. Null:
  // returns 0 and changes nothing. No memory, or any other negative count: returns -1.
  std::int32_t CopyString(const char* text, int count);

  // Appends at `length` and returns the new length, measured up to the first zero byte. A null text appends
  // nothing, but as the empty text does, it gives a string without a block one. No memory: returns -1.
  std::int32_t CatString(const char* text);

  // Cuts out positions `first` to `last`, both included, and returns the new length. Positions outside the
  // string, or in the wrong order: returns 0 and changes nothing.
  std::int32_t TrimMid(int first, int last);

  // Drops one `c` at the end, if there is one. Returns the length.
  std::int32_t TrimRight(char c);

  // How many of the `length` bytes are `c`.
  std::int32_t Count(char c) const;

  // The first position from `start` (-1: 0) upward that holds `c`, else the length. A start outside the
  // string is returned as it is; without a block the result is 0.
  std::int32_t Search(char c, int start) const;

  // The first position from `start` (-1: the last one) downward that holds `c`, else -1. A start outside the
  // string is returned as it is; without a block the result is 0.
  std::int32_t SearchReverse(char c, int start) const;

  // Puts `to` in place of the `from` that Search or SearchReverse finds; returns its position, or -1 if there
  // is none.
  std::int32_t Replace(char from, char to, int start);
  std::int32_t ReplaceReverse(char from, char to, int start);

  // The byte at `i`, 0 to `length`; for any other `i` the zero byte that ends the text. Without a block, a
  // zero byte that belongs to no string.
  char& operator[](int i);

  // Equality of the texts, ignoring the case of the ASCII letters whatever the locale.
  bool operator==(const CIDXString& other) const;
  bool operator!=(const CIDXString& other) const { return !(*this == other); }

  // Gives the block up.
  void ClearString() { FreeBuffer(); }
  void FreeBuffer();

  // Makes sure that the block holds more than `size` bytes, or else has exactly `size`; its last byte is then
  // zero and `length` stays. Returns the block; null, with nothing changed, for a size of 0 or less or when
  // there is no memory.
  char* AllocBuffer(int size);

  // The block as it is, null if there is none: text is UTF-8 when it enters the system.
  char* ConvertASCIIToUTF8() { return buffer; }

  // The hash of the text, below kBucketCount: h = h * 137 + the byte as a signed number, modulo 2^32, for
  // each byte. It tells letters of different case apart although equality does not, so keys that differ in
  // case alone are the same key only if they happen to share a bucket.
  std::uint32_t GetHashKey() const;

 protected:
  char* buffer = nullptr;
  std::int32_t capacity = 0;
  std::int32_t length = 0;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_IDX_STRING_H_
