// Builds a property list from the elements and the text of its XML, in their order.
#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_PROPERTY_LIST_READER_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_PROPERTY_LIST_READER_H_

#include <CoreFoundation/CFString.h>

#include <optional>
#include <string_view>
#include <vector>

#include "platform/corefoundation/base64.h"
#include "platform/corefoundation/byte_buffer.h"
#include "platform/corefoundation/objects.h"
#include "platform/corefoundation/string_object.h"

struct __CFArray;
struct __CFDictionary;

namespace catalogcore::cf {

// Thrown for what is no property list; `reason` is a literal.
struct Refusal {
  const char* reason;
};

// The functions throw Refusal or std::bad_alloc; afterwards the reader may only be destroyed. REQUIRES: elements nest,
// and the first one encloses everything, as an XML parser sees to.
class PropertyListReader {
 public:
  explicit PropertyListReader(bool mutableDictionaries) : mutableDictionaries_(mutableDictionaries) {}

  // `attributes` are names and values in turn, ended by null.
  void StartElement(const char* name, const char** attributes);
  void EndElement(const char* name);
  void Text(std::string_view piece);

  // Takes the base64 that `text` begins with as Text would, if a data element is open, and returns how much that was.
  std::size_t Digits(std::string_view text);

  // The property list, after the last element has ended.
  Ref<Object> TakeResult() { return std::move(result_); }

 private:
  enum class Element { kPlist, kDict, kArray, kKey, kString, kData, kDate, kInteger, kReal, kTrue, kFalse };

  // An array or a dictionary that is still being filled.
  struct Level {
    __CFArray* array;
    __CFDictionary* dictionary;
    Ref<Object> object;
    Ref<__CFString> key;  // one that waits for its value
  };

  static Element ElementOf(std::string_view name);
  void StartPlist(const char** attributes);
  void ExpectKey() const;
  void ExpectValue() const;
  void StartContainer(Element element);
  void EndContainer();
  void EndPlist() const;
  void EndLeaf(Element element);
  Ref<__CFString> TakeString();
  Ref<Object> TakeScalar(Kind kind, const char* element, bool isValid, const char* reason);
  Ref<Object> TakeData();
  void AddValue(Ref<Object> value);

  const bool mutableDictionaries_;
  bool hasPlist_ = false;
  std::vector<Level> levels_;
  std::optional<Element> leaf_;  // the open element that holds text, if one is open
  ByteBuffer content_;           // its text, or the bytes of its base64
  Base64Decoder decoder_;
  Ref<Object> result_;
};

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_PROPERTY_LIST_READER_H_
