#include "base/idx_buffer.h"

#include <cstring>

#include "base/text_size.h"

namespace catalogcore {

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
