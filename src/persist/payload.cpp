#include "persist/payload.h"

#include <algorithm>
#include <limits>
#include <string>

#include "base/decimal.h"
#include "base/idx_string.h"

namespace catalogcore {

namespace {

constexpr char kVersion[] = "CatalogCoreVer1.0";

// Ensures that the block has space for `size` more bytes and their terminator. A full block grows by half its size. If
// that fails, it grows only by what is needed.
bool MakeRoom(CIDXBuffer& payload, std::int32_t size) {
  const std::int32_t needed = CheckedAdd(CheckedAdd(payload.Length(), size), 1);
  if (needed < 0) return false;
  if (needed < payload.Capacity()) return true;
  const std::int64_t ahead = payload.Capacity() + std::int64_t{payload.Capacity()} / 2;
  const std::int64_t wanted = std::clamp<std::int64_t>(ahead, needed, std::numeric_limits<std::int32_t>::max());
  return payload.AllocBuffer(static_cast<std::int32_t>(wanted)) || payload.AllocBuffer(needed);
}

}  // namespace

int IsValidVersion(std::string_view text) { return text == kVersion ? 1 : 0; }

bool SetVersion(CIDXBuffer& payload) {
  return payload.CopyBuffer(kVersion, -1) >= 0 && payload.CatBuffer("\n", -1) >= 0;
}

bool AppendRecord(CIDXBuffer& payload, const char* first, std::uint8_t attribute, const char* last) {
  const std::string middle = ',' + std::to_string(attribute) + ',';
  const std::int32_t firstSize = TextSize(first);
  const auto middleSize = static_cast<std::int32_t>(middle.size());
  const std::int32_t lastSize = TextSize(last);
  if (!MakeRoom(payload, CheckedAdd(CheckedAdd(firstSize, lastSize), middleSize + 1))) return false;
  payload.CatBuffer(first, firstSize + 1);
  payload.CatBuffer(middle.c_str(), middleSize + 1);
  payload.CatBuffer(last, lastSize + 1);
  return payload.CatBuffer("\n", 2) >= 0;  // allocates if the block is full
}

bool CopyField(CIDXString& target, std::string_view field) {
  constexpr std::size_t kMost = std::numeric_limits<std::int32_t>::max();
  return target.CopyString(field.data(), static_cast<std::int32_t>(std::min(field.size(), kMost))) >= 0;
}

std::string_view PayloadReader::Token(char separator) {
  rest_.remove_prefix(std::min(rest_.find_first_not_of(separator), rest_.size()));
  const std::string_view token = rest_.substr(0, rest_.find(separator));
  rest_.remove_prefix(std::min(token.size() + 1, rest_.size()));
  return token;
}

bool PayloadReader::NextRecord(PayloadRecord& record) {
  record.first = Token(',');
  const std::string_view attribute = Token(',');
  record.last = Token('\n');
  isCut_ = !record.first.empty() && record.last.empty();
  if (record.last.empty()) return false;
  // DecimalValue stops at the comma before the last field.
  record.attribute = static_cast<std::uint8_t>(DecimalValue(attribute.data()) & 0xFF);
  return true;
}

}  // namespace catalogcore
