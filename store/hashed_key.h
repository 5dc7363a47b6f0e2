// A key as the tables look for it, measured and hashed once.
#ifndef CATALOGCORE_STORE_HASHED_KEY_H_
#define CATALOGCORE_STORE_HASHED_KEY_H_

#include <cstddef>
#include <cstdint>

#include "base/idx_string.h"

// Two keys are the same when they share a bucket and their texts are equal but for letter case. The hash is that of the
// text alone, as most look-ups never need the bucket; so keys that differ in case alone have one hash, and are never
// more than there are buckets.
struct HashedKey {
  explicit HashedKey(const CIDXString& key);

  // CIDXString::GetHashKey.
  std::uint32_t Bucket() const;

  // Whether the entry with this information has this key. An entry's key holds nothing but its text.
  template <typename Info>
  bool IsKeyOf(const Info& entry) const {
    return entry.keyHash == hash && static_cast<std::size_t>(entry.key.Length()) == size &&
           (IsText(entry.key.Text()) || (IsSpelling(entry.key.Text()) && Bucket() == entry.bucket));
  }

  const char* text;  // the key's own
  std::size_t size;
  std::uint32_t hash;

 private:
  bool IsText(const char* other) const;
  bool IsSpelling(const char* other) const;
};

#endif  // CATALOGCORE_STORE_HASHED_KEY_H_
