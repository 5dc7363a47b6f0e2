// A string that grows as bytes are appended to it: the text of a catalogue file while it is built.
#ifndef CATALOGCORE_BASE_IDX_BUFFER_H_
#define CATALOGCORE_BASE_IDX_BUFFER_H_

#include <cstdint>

#include "base/idx_string.h"

namespace catalogcore {

class CIDXBuffer : public CIDXString {
 public:
  static constexpr std::int32_t kDefaultBlockSize = 256;

  CIDXBuffer() = default;
  // Records the unit in which its maker thinks of growth; nothing is allocated and growth stays exact.
  explicit CIDXBuffer(int size) : blockSize(size) {}

  std::int32_t BlockSize() const { return blockSize; }

  // The same as CopyString(text, count): `count` leaves the terminator out, and one is added.
  std::int32_t CopyBuffer(const char* text, int count) { return CopyString(text, count); }

  // Appends `count` bytes, the last of which is taken for the terminator and overwritten by the next append
  // (-1: the whole text and its terminator). Returns the new length, the old one plus `count` less 1. Null,
  // another negative count, or no memory: returns -1 and changes nothing.
  std::int32_t CatBuffer(const char* text, int count);

 private:
  std::int32_t blockSize = kDefaultBlockSize;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_IDX_BUFFER_H_
