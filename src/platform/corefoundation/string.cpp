#include <algorithm>
#include <cstring>
#include <limits>
#include <map>
#include <mutex>
#include <new>

#include "platform/corefoundation/objects.h"
#include "platform/corefoundation/utf8.h"

namespace catalogcore::cf {

CFStringRef CreateString(std::string_view utf8, Lifetime lifetime) {
  CFIndex units = 0;
  for (std::size_t at = 0; at < utf8.size();) {
    const std::size_t bytes = CharacterBytes(utf8.substr(at));
    if (bytes == 0) return nullptr;
    units += static_cast<CFIndex>(Utf16Units(bytes));
    at += bytes;
  }
  return Create<__CFString>(utf8, units, lifetime);
}

}  // namespace catalogcore::cf

using catalogcore::cf::CharacterBytes;
using catalogcore::cf::Utf16Units;

namespace {

// The first byte and the first UTF-16 unit of a character.
struct Position {
  std::size_t byte = 0;
  CFIndex unit = 0;
};

// Advances from `from` by whole characters that end at most at `unit` and `byteLimit`.
Position Advance(std::string_view text, Position from, CFIndex unit, std::size_t byteLimit) {
  while (from.byte < text.size()) {
    const std::size_t bytes = CharacterBytes(text.substr(from.byte));
    const CFIndex next = from.unit + static_cast<CFIndex>(Utf16Units(bytes));
    if (next > unit || bytes > byteLimit - from.byte) break;
    from = {from.byte + bytes, next};
  }
  return from;
}

CFStringRef ConstantString(const char* text) {
  static std::mutex mutex;
  static auto& strings = *new std::map<std::string, CFStringRef>;  // never destroyed, like the strings
  const std::lock_guard lock(mutex);
  CFStringRef& string = strings[text];
  if (!string) string = catalogcore::cf::CreateString(text, catalogcore::cf::Lifetime::kForever);
  return string;
}

}  // namespace

CFStringRef CFStringCreateWithCString(CFAllocatorRef, const char* text, CFStringEncoding encoding) {
  if (!text || encoding != kCFStringEncodingUTF8) return nullptr;
  return catalogcore::cf::CreateString(text);
}

CFStringRef __CFStringMakeConstantString(const char* text) {
  try {
    return ConstantString(text);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

CFIndex CFStringGetLength(CFStringRef string) { return string->utf16Length; }

CFIndex CFStringGetMaximumSizeForEncoding(CFIndex length, CFStringEncoding encoding) {
  constexpr CFIndex kMaxBytesPerUnit = 3;
  if (encoding != kCFStringEncodingUTF8 || length < 0) return -1;
  if (length > std::numeric_limits<CFIndex>::max() / kMaxBytesPerUnit) return -1;
  return length * kMaxBytesPerUnit;
}

CFIndex CFStringGetBytes(CFStringRef string, CFRange range, CFStringEncoding encoding, UInt8, Boolean, UInt8* buffer,
                         CFIndex capacity, CFIndex* used) {
  if (used) *used = 0;
  if (encoding != kCFStringEncodingUTF8 || range.location < 0 || range.length < 0 || (buffer && capacity < 0)) return 0;
  const std::string_view text = string->utf8;
  const CFIndex first = std::min(range.location, string->utf16Length);
  const CFIndex last = first + std::min(range.length, string->utf16Length - first);
  const bool whole =
      first == 0 && last == string->utf16Length && (!buffer || text.size() <= static_cast<std::size_t>(capacity));
  Position start;
  Position end{text.size(), last};
  if (!whole) {
    start = Advance(text, {}, first, text.size());
    if (start.unit != first) return 0;  // the range begins inside a character
    const std::size_t room = buffer ? static_cast<std::size_t>(capacity) : text.size();
    end = Advance(text, start, last, start.byte + std::min(room, text.size() - start.byte));
  }
  const std::size_t bytes = end.byte - start.byte;
  if (buffer && bytes > 0) std::memcpy(buffer, text.data() + start.byte, bytes);
  if (used) *used = static_cast<CFIndex>(bytes);
  return end.unit - start.unit;
}

Boolean CFStringGetCString(CFStringRef string, char* buffer, CFIndex capacity, CFStringEncoding encoding) {
  const std::string& text = string->utf8;
  if (!buffer || encoding != kCFStringEncodingUTF8 || capacity < 0) return false;
  if (text.size() >= static_cast<std::size_t>(capacity)) return false;
  std::memcpy(buffer, text.c_str(), text.size() + 1);
  return true;
}
