// Values of property lists that are kept as they are read: arrays, numbers, booleans and dates.
#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_KEPT_VALUES_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_KEPT_VALUES_H_

#include <CoreFoundation/CFArray.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/corefoundation/objects.h"

// Grows only until its reader hands it out.
struct __CFArray final : catalogcore::cf::Object {
  __CFArray() : Object(catalogcore::cf::Kind::kArray) {}
  std::vector<catalogcore::cf::Ref<catalogcore::cf::Object>> values;
};

namespace catalogcore::cf {

// A number, boolean or date: the element that it stands in, and its text there, which is empty for a boolean.
struct Scalar final : Object {
  Scalar(Kind kind, const char* elementName, std::string_view content, Lifetime lifetime = Lifetime::kCounted)
      : Object(kind, lifetime), element(elementName), text(content) {}
  const char* const element;
  const std::string text;
};

// One of the two booleans there are; they last for ever. Throws std::bad_alloc without memory.
const Scalar* BooleanOf(bool value);

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_KEPT_VALUES_H_
