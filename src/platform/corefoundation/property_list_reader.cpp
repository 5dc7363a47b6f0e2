#include "platform/corefoundation/property_list_reader.h"

#include <iterator>
#include <new>
#include <utility>

#include "platform/corefoundation/data_object.h"
#include "platform/corefoundation/dictionary_object.h"
#include "platform/corefoundation/kept_values.h"
#include "platform/corefoundation/property_list.h"
#include "platform/corefoundation/value_grammar.h"

namespace catalogcore::cf {

namespace {

template <typename T>
Ref<T> OrThrow(const T* object) {
  if (!object) throw std::bad_alloc();
  return Ref<T>(object);
}

}  // namespace

PropertyListReader::Element PropertyListReader::ElementOf(std::string_view name) {
  constexpr std::string_view kNames[] = {"plist", "dict",    "array", "key",  "string", "data",
                                         "date",  "integer", "real",  "true", "false"};
  for (std::size_t i = 0; i < std::size(kNames); ++i) {
    if (name == kNames[i]) return static_cast<Element>(i);
  }
  throw Refusal{"an unknown element"};
}

void PropertyListReader::StartElement(const char* name, const char** attributes) {
  const Element element = ElementOf(name);
  if (leaf_) throw Refusal{"an element within text"};
  if (element == Element::kPlist) return StartPlist(attributes);
  if (!hasPlist_) throw Refusal{"the outermost element is not plist"};
  if (*attributes) throw Refusal{"an unknown attribute"};
  if (element == Element::kKey) {
    ExpectKey();
  } else {
    ExpectValue();
  }
  if (element == Element::kDict || element == Element::kArray) return StartContainer(element);
  leaf_ = element;
}

void PropertyListReader::StartPlist(const char** attributes) {
  if (hasPlist_) throw Refusal{"plist within plist"};
  hasPlist_ = true;
  for (; *attributes; attributes += 2) {
    if (std::string_view(*attributes) != "version") throw Refusal{"an unknown attribute"};
  }
}

void PropertyListReader::ExpectKey() const {
  if (levels_.empty() || !levels_.back().dictionary) throw Refusal{"a key outside a dictionary"};
  if (levels_.back().key) throw Refusal{"a key without a value"};
}

void PropertyListReader::ExpectValue() const {
  if (levels_.empty()) {
    if (result_) throw Refusal{"more than one value in plist"};
  } else if (levels_.back().dictionary && !levels_.back().key) {
    throw Refusal{"a value without a key"};
  }
}

void PropertyListReader::StartContainer(Element element) {
  if (levels_.size() == kMaxPropertyListLevels) throw Refusal{"too many levels"};
  if (element == Element::kArray) {
    auto* const array = new __CFArray;
    levels_.push_back({array, nullptr, Ref<Object>(array), nullptr});
  } else {
    auto* const dictionary = new __CFDictionary(mutableDictionaries_);
    levels_.push_back({nullptr, dictionary, Ref<Object>(dictionary), nullptr});
  }
}

void PropertyListReader::EndElement(const char* name) {
  if (leaf_) {
    EndLeaf(*std::exchange(leaf_, std::nullopt));
  } else if (ElementOf(name) == Element::kPlist) {
    EndPlist();
  } else {
    EndContainer();
  }
}

void PropertyListReader::EndPlist() const {
  if (!result_) throw Refusal{"no value in plist"};
}

void PropertyListReader::EndContainer() {
  Level level = std::move(levels_.back());
  levels_.pop_back();
  if (level.key) throw Refusal{"a key without a value"};
  if (level.dictionary && !level.dictionary->Index()) throw Refusal{"a key that its dictionary has twice"};
  AddValue(std::move(level.object));
}

void PropertyListReader::Text(std::string_view piece) {
  if (leaf_ == Element::kData) {
    if (!decoder_.Decode(piece, content_)) throw Refusal{"bad base64"};
  } else if (!leaf_ || leaf_ == Element::kTrue || leaf_ == Element::kFalse) {
    if (!IsSpace(piece)) throw Refusal{"text where none may be"};
  } else {
    content_.Append(piece);
  }
}

std::size_t PropertyListReader::Digits(std::string_view text) {
  return leaf_ == Element::kData ? decoder_.DecodeDigits(text, content_) : 0;
}

void PropertyListReader::EndLeaf(Element element) {
  const std::string_view text = TrimSpace(element == Element::kData ? std::string_view() : content_.view());
  switch (element) {
    case Element::kKey:
      levels_.back().key = TakeString();
      return;
    case Element::kString:
      return AddValue(TakeString());
    case Element::kData:
      return AddValue(TakeData());
    case Element::kDate:
      return AddValue(TakeScalar(Kind::kDate, "date", IsDate(text), "a bad date"));
    case Element::kInteger:
      return AddValue(TakeScalar(Kind::kNumber, "integer", IsInteger(text), "a bad integer"));
    case Element::kReal:
      return AddValue(TakeScalar(Kind::kNumber, "real", IsReal(text), "a bad real"));
    default:
      return AddValue(Ref<Object>(BooleanOf(element == Element::kTrue)));
  }
}

Ref<__CFString> PropertyListReader::TakeString() {
  Ref<__CFString> string = OrThrow(CreateString(content_.view()));  // XML is valid UTF-8 already
  content_.Truncate(0);
  return string;
}

Ref<Object> PropertyListReader::TakeScalar(Kind kind, const char* element, bool isValid, const char* reason) {
  if (!isValid) throw Refusal{reason};
  Ref<Object> scalar(new Scalar(kind, element, TrimSpace(content_.view())));
  content_.Truncate(0);
  return scalar;
}

Ref<Object> PropertyListReader::TakeData() {
  if (!decoder_.IsComplete()) throw Refusal{"base64 that is cut short"};
  decoder_ = {};
  return OrThrow<Object>(CreateData(std::move(content_)));
}

void PropertyListReader::AddValue(Ref<Object> value) {
  if (levels_.empty()) {
    result_ = std::move(value);
  } else if (Level& level = levels_.back(); level.array) {
    level.array->values.push_back(std::move(value));
  } else {
    level.dictionary->Append({std::move(level.key), std::move(value)});
  }
}

}  // namespace catalogcore::cf
