// The dictionary object: its entries in order, and beside them their positions in the order of the keys' bytes. Looking
// up is a binary search, so that no choice of keys makes it slow.
#ifndef CATALOGCORE_PLATFORM_COREFOUNDATION_DICTIONARY_OBJECT_H_
#define CATALOGCORE_PLATFORM_COREFOUNDATION_DICTIONARY_OBJECT_H_

#include <CoreFoundation/CFDictionary.h>

#include <cstddef>
#include <string_view>
#include <vector>

#include "platform/corefoundation/objects.h"
#include "platform/corefoundation/string_object.h"

// Not safe while another thread changes it. Functions that need memory throw std::bad_alloc without it, and change
// nothing then.
struct __CFDictionary final : catalogcore::cf::Object {
 public:
  struct Entry {
    catalogcore::cf::Ref<__CFString> key;
    catalogcore::cf::Ref<catalogcore::cf::Object> value;
  };

  explicit __CFDictionary(bool changeable) : Object(catalogcore::cf::Kind::kDictionary), isMutable(changeable) {}

  const std::vector<Entry>& entries() const { return entries_; }
  const Entry* Find(std::string_view key) const;

  void Set(CFStringRef key, const catalogcore::cf::Object* value);
  void Remove(std::string_view key);

  // Many at once: entries are appended, and only after Index are they found. Index returns whether all keys differ; if
  // not, the dictionary may only be freed.
  void Append(Entry&& entry) { entries_.push_back(std::move(entry)); }
  bool Index();

  const bool isMutable;

 private:
  std::string_view KeyAt(std::size_t position) const { return entries_[position].key->utf8; }
  std::vector<std::size_t>::const_iterator LowerBound(std::string_view key) const;

  std::vector<Entry> entries_;
  std::vector<std::size_t> sorted_;
};

#endif  // CATALOGCORE_PLATFORM_COREFOUNDATION_DICTIONARY_OBJECT_H_
