#include "persist/payload.h"

#include <cstring>
#include <string>

#include "base/decimal.h"

namespace {

constexpr char kVersion[] = "CatalogCoreVer1.0";

}  // namespace

int IsValidVersion(const char* text) { return text && std::strcmp(text, kVersion) == 0 ? 1 : 0; }

bool SetVersion(CIDXBuffer& payload) {
  return payload.CopyBuffer(kVersion, -1) >= 0 && payload.CatBuffer("\n", -1) >= 0;
}

bool AppendRecord(CIDXBuffer& payload, const char* first, std::uint8_t attribute, const char* last) {
  const std::string middle = ',' + std::to_string(attribute) + ',';
  for (const char* part : {first, middle.c_str(), last, "\n"}) {
    if (payload.CatBuffer(part, -1) < 0) return false;
  }
  return true;
}

const char* PayloadReader::VersionLine() { return strtok_r(rest_, "\n", &rest_); }

bool PayloadReader::NextRecord(PayloadRecord& record) {
  record.first = strtok_r(nullptr, ",", &rest_);
  const char* const attribute = record.first ? strtok_r(nullptr, ",", &rest_) : nullptr;
  record.last = attribute ? strtok_r(nullptr, "\n", &rest_) : nullptr;
  if (!record.last) return false;
  record.attribute = static_cast<std::uint8_t>(DecimalValue(attribute) & 0xFF);
  return true;
}
