#include "app/catalog_records.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <stdexcept>

#include "app/regular_file.h"

namespace catalogcore::app {
namespace {

constexpr int kLevels = 4;
constexpr std::int32_t kGroupFactor = 100;  // two decimal digits a level

// The whole file; empty if it is not there.
std::string ReadFile(const std::filesystem::path& name) {
  const FileDescriptor file = OpenRegularFile(AT_FDCWD, name, O_RDONLY);
  if (file.IsOpen()) return ReadWholeFile(file);
  if (errno == ENOENT) return {};
  throw std::runtime_error(WhyNotOpened(errno));
}

// The next field, as the library cuts it: separators ahead of it are skipped. False if there is none.
bool NextField(std::string_view& rest, char separator, std::string_view& field) {
  rest.remove_prefix(std::min(rest.find_first_not_of(separator), rest.size()));
  if (rest.empty()) return false;
  const std::size_t end = std::min(rest.find(separator), rest.size());
  field = rest.substr(0, end);
  rest.remove_prefix(std::min(end + 1, rest.size()));
  return true;
}

// The low 8 bits of the number that the text begins with, as the library reads it.
std::uint8_t AttributeOf(const std::string& text) {
  errno = 0;
  const long long value = std::strtoll(text.c_str(), nullptr, 10);
  return static_cast<std::uint8_t>(std::clamp(value, -2147483648LL, 2147483647LL) & 0xFF);
}

}  // namespace

CatalogRecords::CatalogRecords(const std::filesystem::path& file, CFStringRef key) {
  const std::string content = ReadFile(file);
  if (content.empty()) return;
  const Owned<CFDataRef> data(
      CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(content.data()), static_cast<CFIndex>(content.size())));
  if (!data) throw std::bad_alloc();
  list_.reset(CFPropertyListCreateFromXMLData(nullptr, data.get(), kCFPropertyListImmutable, nullptr));
  if (!list_ || CFGetTypeID(list_.get()) != CFDictionaryGetTypeID()) {
    throw std::runtime_error("it is no catalogue file");
  }
  const CFTypeRef item = CFDictionaryGetValue(static_cast<CFDictionaryRef>(list_.get()), key);
  if (!item) return;
  if (CFGetTypeID(item) != CFDataGetTypeID()) throw std::runtime_error("it is no catalogue file");
  const auto payload = static_cast<CFDataRef>(item);
  const std::string_view text(reinterpret_cast<const char*>(CFDataGetBytePtr(payload)),
                              static_cast<std::size_t>(CFDataGetLength(payload)));
  Cut(text.substr(0, text.find('\0')));
}

void CatalogRecords::Cut(std::string_view payload) {
  std::string_view version;
  if (!NextField(payload, '\n', version)) return;
  for (CatalogRecord record; NextField(payload, ',', record.key);) {
    std::string_view attribute;
    if (!NextField(payload, ',', attribute) || !NextField(payload, '\n', record.text)) {
      isCut_ = true;
      return;
    }
    record.attribute = AttributeOf(std::string(attribute));
    records_.push_back(record);
  }
}

std::int32_t NumberOfKey(std::string_view key) {
  std::int32_t number = 0;
  int levels = 0;
  for (bool hasMore = true; hasMore; ++levels) {
    const std::size_t slash = key.find('/');
    hasMore = slash != std::string_view::npos;
    const std::string_view digits = key.substr(0, slash);
    std::int32_t group = 0;
    const auto [end, error] = std::from_chars(digits.begin(), digits.end(), group);
    const bool isGroup = error == std::errc() && end == digits.end() && digits[0] != '0' && group > 0;
    if (!isGroup || group >= kGroupFactor || levels == kLevels) return 0;
    number = number * kGroupFactor + group;
    key.remove_prefix(hasMore ? slash + 1 : key.size());
  }
  for (; levels < kLevels; ++levels) number *= kGroupFactor;
  return number;
}

std::string KeyOfNumber(std::int32_t number) {
  std::string key;
  for (; number > 0; number /= kGroupFactor) {
    const std::int32_t group = number % kGroupFactor;
    if (group > 0) key = std::to_string(group) + (key.empty() ? "" : "/") + key;
  }
  return key.empty() ? "." : key;
}

}  // namespace catalogcore::app
