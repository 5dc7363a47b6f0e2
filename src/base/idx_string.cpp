#include "base/idx_string.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "base/text_hash.h"

namespace catalogcore {

CIDXString::CIDXString(int size) { AllocBuffer(size); }

CIDXString::~CIDXString() { FreeBuffer(); }

char* CIDXString::AllocBuffer(int size) {
  if (size <= 0) return nullptr;
  if (size < capacity) return buffer;
  auto* const block = static_cast<char*>(std::realloc(buffer, static_cast<std::size_t>(size) + 1));
  if (!block) return nullptr;
  if (!buffer) block[0] = 0;
  block[size - 1] = 0;
  block[size] = 0;
  capacity = size;
  buffer = block;
  return buffer;
}

void CIDXString::FreeBuffer() {
  std::free(buffer);
  buffer = nullptr;
  capacity = 0;
  length = 0;
}

std::int32_t CIDXString::CopyString(const char* text) {
  if (!text) return 0;
  const std::int32_t size = TextSize(text);
  if (!AllocBuffer(CheckedAdd(size, 1))) return -1;
  std::memcpy(buffer, text, static_cast<std::size_t>(size) + 1);
  length = size;
  return length;
}

std::int32_t CIDXString::CopyString(const char* text, int count) {
  if (!text) return 0;
  if (count == -1) count = TextSize(text);
  if (!AllocBuffer(CheckedAdd(count, 1))) return -1;
  const auto wanted = static_cast<std::size_t>(count);
  const std::size_t given = strnlen(text, wanted);
  std::memcpy(buffer, text, given);
  std::memset(buffer + given, 0, wanted - given + 1);
  length = count;
  return length;
}

std::int32_t CIDXString::CatString(const char* text) {
  if (!text) text = "";
  const std::int32_t size = TextSize(text);
  if (!AllocBuffer(CheckedAdd(length, CheckedAdd(size, 1)))) return -1;
  std::memcpy(buffer + length, text, static_cast<std::size_t>(size) + 1);
  length = TextSize(buffer);
  return length;
}

std::int32_t CIDXString::TrimMid(int first, int last) {
  const auto isInside = [this](int position) { return position >= 0 && position < length; };
  if (!isInside(first) || !isInside(last) || first > last) return 0;
  const auto tail = static_cast<std::size_t>(length - last);  // includes the terminator
  std::memmove(buffer + first, buffer + last + 1, tail);
  // Clears the old end, which an append without a terminator would otherwise make visible again.
  std::memset(buffer + first + tail, 0, static_cast<std::size_t>(last - first));
  length = TextSize(buffer);
  return length;
}

std::int32_t CIDXString::TrimRight(char c) {
  if (length >= 1 && buffer[length - 1] == c) {
    buffer[length - 1] = 0;
    length = TextSize(buffer);
  }
  return length;
}

std::int32_t CIDXString::Count(char c) const {
  return static_cast<std::int32_t>(std::count(buffer, buffer + length, c));
}

std::int32_t CIDXString::Search(char c, int start) const {
  if (!buffer) return length;
  if (start == -1) start = 0;
  if (start < 0 || start >= length) return start;
  return static_cast<std::int32_t>(std::find(buffer + start, buffer + length, c) - buffer);
}

std::int32_t CIDXString::SearchReverse(char c, int start) const {
  if (!buffer) return length;
  if (start == -1) start = length - 1;
  if (start < 0 || start >= length) return start;
  while (start >= 0 && buffer[start] != c) --start;
  return start;
}

std::int32_t CIDXString::Replace(char from, char to, int start) {
  const std::int32_t position = Search(from, start);
  if (position < 0 || position >= length) return -1;
  buffer[position] = to;
  return position;
}

std::int32_t CIDXString::ReplaceReverse(char from, char to, int start) {
  const std::int32_t position = SearchReverse(from, start);
  if (position < 0 || position >= length) return -1;
  buffer[position] = to;
  return position;
}

char& CIDXString::operator[](int i) {
  if (!buffer) {
    thread_local char none;
    none = 0;
    return none;
  }
  return buffer[i >= 0 && i <= length ? i : TextSize(buffer)];
}

bool CIDXString::operator==(const CIDXString& other) const {
  const std::int32_t size = TextSize(Text());
  return size == TextSize(other.Text()) && EqualFolded(Text(), other.Text(), static_cast<std::size_t>(size));
}

std::uint32_t CIDXString::GetHashKey() const { return ExactHash(Text(), std::strlen(Text())) % kBucketCount; }

std::int32_t CIDXBuffer::CatBuffer(const char* text, int count) {
  if (!text || count < -1) return -1;
  if (count == -1) count = CheckedAdd(TextSize(text), 1);
  const std::int32_t size = CheckedAdd(length, count);
  if (!AllocBuffer(size)) return -1;
  std::memcpy(buffer + length, text, static_cast<std::size_t>(count));
  length = size - 1;
  return length;
}

}  // namespace catalogcore
