#include "platform/corefoundation/property_list_reader.h"

#include <algorithm>
#include <iterator>
#include <new>

namespace catalogcore::cf {

namespace {

constexpr std::size_t kMaxLevels = 512;

void Require(bool isValid) {
  if (!isValid) throw InvalidPropertyList();
}

template <typename T>
Ref<T> OrThrow(const T* object) {
  if (!object) throw std::bad_alloc();
  return Ref<T>(object);
}

bool HaveDuplicates(std::vector<Ref<__CFString>>& keys) {
  std::sort(keys.begin(), keys.end(), [](const auto& a, const auto& b) { return a->utf8 < b->utf8; });
  const auto isSame = [](const auto& a, const auto& b) { return a->utf8 == b->utf8; };
  return std::adjacent_find(keys.begin(), keys.end(), isSame) != keys.end();
}

}  // namespace

PropertyListReader::Element PropertyListReader::ElementOf(std::string_view name) {
  constexpr std::string_view kNames[] = {"plist", "dict",    "array", "key",  "string", "data",
                                         "date",  "integer", "real",  "true", "false"};
  const auto found = std::find(std::begin(kNames), std::end(kNames), name);
  Require(found != std::end(kNames));
  return static_cast<Element>(found - std::begin(kNames));
}

void PropertyListReader::StartElement(std::string_view name, const char** attributes) {
  const Element element = ElementOf(name);
  Require(!leaf_);
  if (element == Element::kPlist) return StartPlist(attributes);
  Require(hasPlist_ && !*attributes);
  if (element == Element::kKey) {
    ExpectKey();
  } else {
    ExpectValue();
  }
  if (element == Element::kDict || element == Element::kArray) return StartContainer(element, name);
  leaf_ = element;
}

void PropertyListReader::StartPlist(const char** attributes) {
  Require(!hasPlist_);
  hasPlist_ = true;
  for (; *attributes; attributes += 2) Require(std::string_view(*attributes) == "version");
}

void PropertyListReader::ExpectKey() const {
  Require(!levels_.empty() && levels_.back().isDictionary && !levels_.back().key);
}

void PropertyListReader::ExpectValue() const {
  Require(levels_.empty() ? !result_ : !levels_.back().isDictionary || levels_.back().key);
}

void PropertyListReader::StartContainer(Element element, std::string_view name) {
  Require(levels_.size() < kMaxLevels);
  const bool isDictionary = element == Element::kDict;
  if (isDictionary && levels_.empty()) {
    result_.reset(dictionary_ = new __CFDictionary);
    kept_.AddLevel();
  } else {
    kept_.Open(name);
  }
  levels_.push_back({isDictionary});
}

void PropertyListReader::EndElement(std::string_view name) {
  if (leaf_) return EndLeaf(*std::exchange(leaf_, std::nullopt), name);
  if (name != "plist") EndContainer(name);
}

void PropertyListReader::EndContainer(std::string_view name) {
  Require(!levels_.back().key && !HaveDuplicates(levels_.back().keys));
  levels_.pop_back();
  if (dictionary_ && levels_.empty()) return;
  kept_.Close(name);
  EndKeptValue();
}

void PropertyListReader::Text(std::string_view piece) {
  constexpr std::string_view kSpace = " \t\r\n";
  if (leaf_ == Element::kData) return Require(decoder_.Decode(piece, content_));
  const bool canHoldText = leaf_ && leaf_ != Element::kTrue && leaf_ != Element::kFalse;
  if (canHoldText) return content_.Append(piece);
  Require(piece.find_first_not_of(kSpace) == std::string_view::npos);
}

std::size_t PropertyListReader::Digits(std::string_view text) {
  return leaf_ == Element::kData ? decoder_.DecodeDigits(text, content_) : 0;
}

void PropertyListReader::EndLeaf(Element element, std::string_view name) {
  if (element == Element::kKey) return EndKey();
  if (element == Element::kData) {
    Require(decoder_.IsComplete());
    decoder_ = {};
    if (!IsInsideKeptValue()) return AddValue(OrThrow<Object>(CreateData(std::move(content_))));
    kept_.WriteData(content_.view());
  } else if (element == Element::kTrue || element == Element::kFalse) {
    kept_.WriteEmpty(name);
  } else if (element == Element::kString && !IsInsideKeptValue()) {
    return AddValue(TakeString());
  } else {
    Require(kept_.WriteText(name, content_.view()));
  }
  content_.Truncate(0);
  EndKeptValue();
}

void PropertyListReader::EndKey() {
  Ref<__CFString> key = TakeString();
  if (IsInsideKeptValue()) Require(kept_.WriteText("key", key->utf8));
  levels_.back().key = std::move(key);
}

Ref<__CFString> PropertyListReader::TakeString() {
  Ref<__CFString> string = OrThrow(CreateString(content_.view()));  // XML is valid UTF-8 already
  content_.Truncate(0);
  return string;
}

// Ends a kept value, or a value inside a kept value.
void PropertyListReader::EndKeptValue() {
  if (IsInsideKeptValue()) return AddValue(nullptr);
  ByteBuffer xml = kept_.TakeText();
  xml.Fit();
  AddValue(Ref<Object>(new KeptValue(std::move(xml))));
}

// `value` is null inside a kept value: its text is in `kept_` already.
void PropertyListReader::AddValue(Ref<Object> value) {
  if (levels_.empty()) {
    result_ = std::move(value);
    return;
  }
  Level& level = levels_.back();
  if (value) dictionary_->entries.push_back({Share(level.key.get()), std::move(value)});
  if (level.isDictionary) level.keys.push_back(std::move(level.key));
}

}  // namespace catalogcore::cf
