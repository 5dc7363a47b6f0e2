#include "api/index_number.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "base/decimal.h"

namespace catalogcore {

int ConvertINTtoPath(CIDXString& path, int number, int digits) {
  if (number == kRootNumber) return path.CopyString(".");
  if (!IsIndexNumber(number) || digits < 1) return -1;
  const std::string text = std::to_string(number);
  const auto groupSize = static_cast<std::size_t>(digits);
  std::size_t at = groupSize - text.size() % groupSize;
  std::string result = text.substr(0, at);
  for (; at < text.size(); at += groupSize) {
    const std::int32_t group = DecimalValue(text.substr(at, groupSize).c_str());
    if (group == 0) break;
    result += '/' + std::to_string(group);
  }
  return path.CopyString(result.c_str());
}

int ConvertPathtoINT(int& number, const CIDXString& path, int levels, int digits) {
  const char* group = path.Text();
  if (std::strcmp(group, ".") == 0) {
    number = kRootNumber;
    return 0;
  }
  std::uint32_t factor = 1;
  for (int i = 0; i < digits; ++i) factor *= 10;
  std::uint32_t packed = 0;
  int groups = 0;
  for (const char* next = group; next; ++groups) {
    group = next;
    packed = packed * factor + static_cast<std::uint32_t>(DecimalValue(group));
    const char* const slash = std::strchr(group, '/');
    next = slash ? slash + 1 : nullptr;
  }
  for (; groups < levels; ++groups) packed *= factor;
  number = static_cast<int>(packed);
  return DecimalValue(group);
}

int GetLastIndexTag(const char* path) {
  const char* const slash = std::strrchr(path, '/');
  return DecimalValue(slash ? slash + 1 : path);
}

}  // namespace catalogcore
