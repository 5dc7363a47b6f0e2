// Property lists as XML: what is read is written, and reads as the same again. A byte 1, which no XML holds,
// stands for so much base64 that the reader keeps it from its XML parser.
#include <CoreFoundation/CoreFoundation.h>

#include <algorithm>

#include "base/cf_reference.h"
#include "fuzz/support/fuzzer.h"
#include "platform/corefoundation/data_object.h"
#include "platform/corefoundation/dictionary_object.h"
#include "platform/corefoundation/kept_values.h"

namespace {

using catalogcore::cf::Kind;
using catalogcore::cf::Object;

using List = CFReference<CFPropertyListRef>;

std::string WithLongRuns(std::string_view xml) {
  const std::string run(std::size_t{70} << 10, 'Q');
  std::string text(xml);
  std::size_t at = 0;
  for (int runs = 0; runs < 4 && (at = text.find('\x01', at)) != text.npos; at += run.size(), ++runs) {
    text.replace(at, 1, run);
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

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string xml = WithLongRuns(AsText(data, size));
  const ProportionalMemory memory(xml.size());
  const List list = Read(xml, kCFPropertyListImmutable);
  EXPECT_EQ(Read(xml, kCFPropertyListMutableContainers) == nullptr, list == nullptr);
  if (!list) return 0;
  const List again = Read(Written(list), kCFPropertyListImmutable);
  EXPECT_TRUE(again && IsSame(*static_cast<const Object*>(again.get()), *static_cast<const Object*>(list.get())));
  return 0;
}
