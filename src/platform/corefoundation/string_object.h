// The string object: UTF-8 inside, with its length in UTF-16 units.
#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_STRING_OBJECT_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_STRING_OBJECT_H_

#include <CoreFoundation/CFString.h>

#include <string>
#include <string_view>

#include "platform/corefoundation/objects.h"

// Invariant: `utf8` is valid UTF-8 and `utf16Length` is its length in UTF-16 units.
struct __CFString final : catalogcore::cf::Object {
  __CFString(std::string_view text, CFIndex units, catalogcore::cf::Lifetime lifetime)
      : Object(catalogcore::cf::Kind::kString, lifetime), utf8(text), utf16Length(units) {}
  const std::string utf8;
  const CFIndex utf16Length;
};

namespace catalogcore::cf {

// A string of the text, or null when it is not valid UTF-8 or there is no memory.
CFStringRef CreateString(std::string_view utf8, Lifetime lifetime = Lifetime::kCounted);

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_STRING_OBJECT_H_
