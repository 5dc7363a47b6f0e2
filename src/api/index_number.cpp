#include "api/index_number.h"

#include <cstdint>
#include <cstring>
#include <string>

#include "base/decimal.h"

namespace catalogcore {

namespace {

std::string PathText(int number, int digits) {
  const std::string text = std::to_string(number);
  const auto groupSize = static_cast<std::size_t>(digits);
  std::size_t at = groupSize - text.size() % groupSize;
  std::string result = text.substr(0, at);
  for (; at < text.size(); at += groupSize) {
    const std::int32_t group = DecimalValue(text.substr(at, groupSize).c_str());
    if (group == 0) break;
    result += '/' + std::to_string(group);
  }
  return result;
}

// Packs the groups of a path that is not the root's into `number` and returns the last group's value.
int PackGroups(int& number, const char* path, int levels, int digits) {
  std::uint32_t factor = 1;
  for (int i = 0; i < digits; ++i) factor *= 10;
  std::uint32_t packed = 0;
  int groups = 0;
  const char* group = path;
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

}  // namespace

std::string IndexPath(int number) {
  if (number == kRootNumber) return ".";
  return IsIndexNumber(number) ? PathText(number, kIndexDigits) : std::string();
}

int NumberOfIndexPath(const std::string& path) {
  if (path == ".") return kRootNumber;
  int number = 0;
  PackGroups(number, path.c_str(), kIndexLevels, kIndexDigits);
  return IsIndexNumber(number) && IndexPath(number) == path ? number : 0;
}

int ConvertINTtoPath(CIDXString& path, int number, int digits) {
  if (number == kRootNumber) return path.CopyString(".");
  if (!IsIndexNumber(number) || digits < 1) return -1;
  return path.CopyString(PathText(number, digits).c_str());
}

int ConvertPathtoINT(int& number, const CIDXString& path, int levels, int digits) {
  if (std::strcmp(path.Text(), ".") != 0) return PackGroups(number, path.Text(), levels, digits);
  number = kRootNumber;
  return 0;
}

int GetLastIndexTag(const char* path) {
  const char* const slash = std::strrchr(path, '/');
  return DecimalValue(slash ? slash + 1 : path);
}

}  // namespace catalogcore
