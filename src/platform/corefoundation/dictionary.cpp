#include <algorithm>
#include <new>
#include <numeric>

#include "platform/corefoundation/dictionary_object.h"

using catalogcore::cf::AsObject;
using catalogcore::cf::Kind;
using catalogcore::cf::Object;
using catalogcore::cf::Share;

const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {0};
const CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks = {0};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0};

std::vector<std::size_t>::const_iterator __CFDictionary::LowerBound(std::string_view key) const {
  return std::lower_bound(sorted_.begin(), sorted_.end(), key,
                          [this](std::size_t position, std::string_view wanted) { return KeyAt(position) < wanted; });
}

const __CFDictionary::Entry* __CFDictionary::Find(std::string_view key) const {
  const auto found = LowerBound(key);
  return found != sorted_.end() && KeyAt(*found) == key ? &entries_[*found] : nullptr;
}

void __CFDictionary::Set(CFStringRef key, const Object* value) {
  const auto place = LowerBound(key->utf8);
  if (place != sorted_.end() && KeyAt(*place) == key->utf8) {
    entries_[*place].value = Share(value);
    return;
  }
  entries_.push_back({Share(key), Share(value)});
  try {
    sorted_.insert(place, entries_.size() - 1);
  } catch (const std::bad_alloc&) {
    entries_.pop_back();
    throw;
  }
}

void __CFDictionary::Remove(std::string_view key) {
  const auto place = LowerBound(key);
  if (place == sorted_.end() || KeyAt(*place) != key) return;
  const std::size_t removed = *place;
  sorted_.erase(place);
  for (std::size_t& position : sorted_) {
    if (position > removed) --position;
  }
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(removed));
}

bool __CFDictionary::Index() {
  sorted_.resize(entries_.size());
  std::iota(sorted_.begin(), sorted_.end(), std::size_t{0});
  std::sort(sorted_.begin(), sorted_.end(), [this](std::size_t a, std::size_t b) { return KeyAt(a) < KeyAt(b); });
  return std::adjacent_find(sorted_.begin(), sorted_.end(),
                            [this](std::size_t a, std::size_t b) { return KeyAt(a) == KeyAt(b); }) == sorted_.end();
}

namespace {

// The key as a string, or null if it is none.
CFStringRef AsKey(const void* key) {
  const bool isString = key && AsObject(key)->kind() == Kind::kString;
  return isString ? static_cast<CFStringRef>(AsObject(key)) : nullptr;
}

const __CFDictionary::Entry* Find(CFDictionaryRef dictionary, const void* key) {
  const CFStringRef string = AsKey(key);
  return string ? dictionary->Find(string->utf8) : nullptr;
}

CFMutableDictionaryRef CreateMutable() {
  return const_cast<CFMutableDictionaryRef>(catalogcore::cf::Create<__CFDictionary>(true));
}

}  // namespace

CFTypeID CFDictionaryGetTypeID() { return static_cast<CFTypeID>(Kind::kDictionary); }

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex, const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
  if (keyCallBacks != &kCFTypeDictionaryKeyCallBacks && keyCallBacks != &kCFCopyStringDictionaryKeyCallBacks) {
    return nullptr;
  }
  return valueCallBacks == &kCFTypeDictionaryValueCallBacks ? CreateMutable() : nullptr;
}

CFMutableDictionaryRef CFDictionaryCreateMutableCopy(CFAllocatorRef, CFIndex, CFDictionaryRef dictionary) {
  const CFMutableDictionaryRef copy = dictionary ? CreateMutable() : nullptr;
  if (!copy) return nullptr;
  try {
    for (const auto& [key, value] : dictionary->entries()) copy->Append({Share(key.get()), Share(value.get())});
    copy->Index();
    return copy;
  } catch (const std::bad_alloc&) {
    CFRelease(copy);
    return nullptr;
  }
}

CFIndex CFDictionaryGetCount(CFDictionaryRef dictionary) { return static_cast<CFIndex>(dictionary->entries().size()); }

Boolean CFDictionaryContainsKey(CFDictionaryRef dictionary, const void* key) {
  return Find(dictionary, key) != nullptr;
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
  const __CFDictionary::Entry* const entry = Find(dictionary, key);
  return entry ? entry->value.get() : nullptr;
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
  const CFStringRef string = AsKey(key);
  if (!string || !value || !dictionary->isMutable) return;
  try {
    dictionary->Set(string, AsObject(value));
  } catch (const std::bad_alloc&) {
    return;  // the dictionary is as it was
  }
}

void CFDictionaryRemoveValue(CFMutableDictionaryRef dictionary, const void* key) {
  const CFStringRef string = AsKey(key);
  if (string && dictionary->isMutable) dictionary->Remove(string->utf8);
}
