#include <CoreFoundation/CFDictionary.h>

#include <algorithm>
#include <new>
#include <string_view>

#include "platform/corefoundation/objects.h"

using catalogcore::cf::AsObject;
using catalogcore::cf::Kind;
using catalogcore::cf::Object;
using catalogcore::cf::Share;

const CFDictionaryKeyCallBacks kCFTypeDictionaryKeyCallBacks = {0};
const CFDictionaryKeyCallBacks kCFCopyStringDictionaryKeyCallBacks = {0};
const CFDictionaryValueCallBacks kCFTypeDictionaryValueCallBacks = {0};

namespace {

// Null if the key is not a string.
CFStringRef AsKey(const void* key) {
  const bool isString = key && AsObject(key)->kind() == Kind::kString;
  return isString ? static_cast<CFStringRef>(AsObject(key)) : nullptr;
}

bool CanBeValue(const Object* value) {
  return value && (value->kind() == Kind::kString || value->kind() == Kind::kData || value->kind() == Kind::kKept);
}

// The entry of the key, or the end. Callers look up a few keys, so an index would cost more than it saves.
template <typename Entries>
auto Find(Entries& entries, CFStringRef key) {
  return std::find_if(entries.begin(), entries.end(),
                      [key](const auto& entry) { return entry.key->utf8 == key->utf8; });
}

}  // namespace

CFTypeID CFDictionaryGetTypeID() { return static_cast<CFTypeID>(Kind::kDictionary); }

CFMutableDictionaryRef CFDictionaryCreateMutable(CFAllocatorRef, CFIndex, const CFDictionaryKeyCallBacks* keyCallBacks,
                                                 const CFDictionaryValueCallBacks* valueCallBacks) {
  if (keyCallBacks != &kCFTypeDictionaryKeyCallBacks && keyCallBacks != &kCFCopyStringDictionaryKeyCallBacks) {
    return nullptr;
  }
  if (valueCallBacks != &kCFTypeDictionaryValueCallBacks) return nullptr;
  return const_cast<CFMutableDictionaryRef>(catalogcore::cf::Create<__CFDictionary>());
}

const void* CFDictionaryGetValue(CFDictionaryRef dictionary, const void* key) {
  const CFStringRef string = AsKey(key);
  if (!string) return nullptr;
  const auto entry = Find(dictionary->entries, string);
  return entry == dictionary->entries.end() ? nullptr : entry->value.get();
}

void CFDictionarySetValue(CFMutableDictionaryRef dictionary, const void* key, const void* value) {
  const CFStringRef string = AsKey(key);
  if (!string || !CanBeValue(AsObject(value))) return;
  if (const auto entry = Find(dictionary->entries, string); entry != dictionary->entries.end()) {
    entry->value = Share(AsObject(value));
    return;
  }
  try {
    dictionary->entries.push_back({Share(string), Share(AsObject(value))});
  } catch (const std::bad_alloc&) {
    return;  // the dictionary is as it was
  }
}
