// Builds a property list from the elements and the text of its XML, in their order.
#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_PROPERTY_LIST_READER_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_PROPERTY_LIST_READER_H_

#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/corefoundation/base64.h"
#include "platform/corefoundation/objects.h"
#include "platform/corefoundation/property_list_writer.h"

namespace catalogcore::cf {

// Thrown when the XML is not a property list.
struct InvalidPropertyList {};

// The root becomes a dictionary, and its strings and data become objects. Every other value is checked and written at
// once as the text of a KeptValue, so no object holds another of its kind and nothing recurses.
//
// The functions throw InvalidPropertyList or std::bad_alloc. After an exception the reader may only be destroyed.
// REQUIRES: elements nest and one element encloses all others, which an XML parser ensures.
class PropertyListReader {
 public:
  // `attributes` are names and values in turn; a null pointer ends them.
  void StartElement(std::string_view name, const char** attributes);
  void EndElement(std::string_view name);
  void Text(std::string_view piece);

  // If a data element is open, takes the base64 at the beginning of `text` as Text does. Returns the number of
  // characters taken.
  std::size_t Digits(std::string_view text);

  // The property list, after the last element has ended; null if the element plist is empty.
  Ref<Object> TakeResult() { return std::move(result_); }

 private:
  enum class Element { kPlist, kDict, kArray, kKey, kString, kData, kDate, kInteger, kReal, kTrue, kFalse };

  // An open array or dictionary.
  struct Level {
    bool isDictionary;
    Ref<__CFString> key = nullptr;           // a key that has no value yet
    std::vector<Ref<__CFString>> keys = {};  // those that have one
  };

  static Element ElementOf(std::string_view name);
  void StartPlist(const char** attributes);
  void ExpectKey() const;
  void ExpectValue() const;
  void StartContainer(Element element, std::string_view name);
  void EndContainer(std::string_view name);
  void EndLeaf(Element element, std::string_view name);
  void EndKey();
  void EndKeptValue();
  void AddValue(Ref<Object> value);
  Ref<__CFString> TakeString();
  bool IsInsideKeptValue() const { return levels_.size() > (dictionary_ ? 1 : 0); }

  bool hasPlist_ = false;
  std::vector<Level> levels_;
  std::optional<Element> leaf_;  // the open element that holds text, if one is open
  ByteBuffer content_;           // its text, or the bytes of its base64
  Base64Decoder decoder_;
  PropertyListWriter kept_;               // the kept value that is being read
  __CFDictionary* dictionary_ = nullptr;  // the root, if it is a dictionary; `result_` owns it
  Ref<Object> result_;
};

}  // namespace catalogcore::cf

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_PROPERTY_LIST_READER_H_
