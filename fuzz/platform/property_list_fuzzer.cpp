// Property lists as XML: what is read is written, and reads as the same again; in UTF-16, too, as in ASCII. Bytes that
// no XML holds make an input long enough to reach the limits of the reader, which a fuzzer does not reach by itself:
//   1     so much base64 that the reader keeps it from its XML parser;
//   2 N   blanks, so that N characters fit in before the parser gets its next piece;
//   3, 4  at the beginning: UTF-16, little or big endian.
#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>

#include "base/owners.h"
#include "fuzz/support/fuzzer.h"
#include "platform/corefoundation/data_object.h"
#include "platform/corefoundation/dictionary_object.h"
#include "platform/corefoundation/kept_values.h"

namespace catalogcore {

namespace {

using catalogcore::cf::Kind;
using catalogcore::cf::Object;

using List = CFReference<CFPropertyListRef>;

enum class Encoding { kBytes, kLittleEndian, kBigEndian };

std::string Encoded(const std::string& latin1, Encoding encoding) {
  if (encoding == Encoding::kBytes) return latin1;
  const std::size_t low = encoding == Encoding::kLittleEndian ? 0 : 1;
  std::string text(2 * (latin1.size() + 1), '\0');
  text[low] = '\xFF';
  text[1 - low] = '\xFE';
  for (std::size_t i = 0; i < latin1.size(); ++i) text[2 * (i + 1) + low] = latin1[i];
  return text;
}

// The input with what its bytes 1 and 2 stand for, a few times at most.
std::string Expanded(std::string_view input, Encoding encoding) {
  constexpr std::size_t kPiece = std::size_t{64} << 10, kMostLong = 4;
  const std::size_t width = encoding == Encoding::kBytes ? 1 : 2;
  std::string text;
  std::size_t count = 0;
  for (std::size_t at = 0; at < input.size(); ++at) {
    if (input[at] == '\x01' && count < kMostLong) {
      text.append(std::size_t{70} << 10, 'Q');
      ++count;
    } else if (input[at] == '\x02' && at + 1 < input.size() && count < kMostLong) {
      const auto left = static_cast<unsigned char>(input[++at]) + width - 1;  // the mark of UTF-16 is one character
      text.append((2 * kPiece / width - text.size() % (kPiece / width) - left) % (kPiece / width), ' ');
      ++count;
    } else {
      text += input[at];
    }
  }
  return text;
}

List Read(std::string_view xml, CFOptionFlags mutability) {
  const CFReference<CFDataRef> data(
      CFDataCreate(nullptr, reinterpret_cast<const UInt8*>(xml.data()), static_cast<CFIndex>(xml.size())));
  CFStringRef error = nullptr;
  List list(CFPropertyListCreateFromXMLData(nullptr, data.get(), mutability, &error));
  EXPECT_NE(list == nullptr, error == nullptr);
  CFRelease(error);
  return list;
}

std::string Written(const List& list) {
  const CFReference<CFDataRef> xml(CFPropertyListCreateXMLData(nullptr, list.get()));
  EXPECT_TRUE(xml);
  return std::string(AsText(CFDataGetBytePtr(xml.get()), static_cast<std::size_t>(CFDataGetLength(xml.get()))));
}

bool IsSame(const Object& a, const Object& b) {
  if (a.kind() != b.kind()) return false;
  const auto both = [&]<typename T>(const T& first, auto same) { return same(first, static_cast<const T&>(b)); };
  const auto isSame = [](const auto& x, const auto& y) { return IsSame(*x, *y); };
  switch (a.kind()) {
    case Kind::kString:
      return both(static_cast<const __CFString&>(a), [](auto& x, auto& y) { return x.utf8 == y.utf8; });
    case Kind::kData:
      return both(static_cast<const __CFData&>(a), [](auto& x, auto& y) { return x.bytes == y.bytes; });
    case Kind::kArray:
      return both(static_cast<const __CFArray&>(a),
                  [&](auto& x, auto& y) { return std::ranges::equal(x.values, y.values, isSame); });
    case Kind::kDictionary:
      return both(static_cast<const __CFDictionary&>(a), [](auto& x, auto& y) {
        return std::ranges::equal(x.entries(), y.entries(), [](auto& one, auto& other) {
          return one.key->utf8 == other.key->utf8 && IsSame(*one.value, *other.value);
        });
      });
    default:
      return both(static_cast<const catalogcore::cf::Scalar&>(a),
                  [](auto& x, auto& y) { return std::string_view(x.element) == y.element && x.text == y.text; });
  }
}

// ASCII that declares no encoding is the same property list in every encoding.
bool IsPlainAscii(std::string_view text) {
  return text.find("encoding") == text.npos && std::ranges::all_of(text, [](char c) { return c > 0; });
}

bool IsSame(const List& a, const List& b) {
  if (!a || !b) return !a && !b;
  return IsSame(*static_cast<const Object*>(a.get()), *static_cast<const Object*>(b.get()));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const bool isUtf16 = size > 0 && (*data == 3 || *data == 4);
  const Encoding encoding = !isUtf16 ? Encoding::kBytes : *data == 3 ? Encoding::kLittleEndian : Encoding::kBigEndian;
  const std::string text = Expanded(AsText(data + isUtf16, size - isUtf16), encoding);
  const std::string xml = Encoded(text, encoding);
  const ProportionalMemory memory(xml.size());
  const List list = Read(xml, kCFPropertyListImmutable);
  EXPECT_EQ(Read(xml, kCFPropertyListMutableContainers) == nullptr, list == nullptr);
  EXPECT_TRUE(!isUtf16 || !IsPlainAscii(text) || IsSame(list, Read(text, kCFPropertyListImmutable)));
  EXPECT_TRUE(!list || IsSame(list, Read(Written(list), kCFPropertyListImmutable)));
  return 0;
}

}  // namespace catalogcore
