// A key as the tables look for it, measured and hashed once.
#ifndef CATALOGCORE_STORE_HASHED_KEY_H_
#define CATALOGCORE_STORE_HASHED_KEY_H_

#include <cstddef>
#include <cstdint>

#include "base/idx_string.h"

namespace catalogcore {

// Two keys are the same when they share a bucket and their texts are equal but for letter case; twins are keys whose texts
// are equal but for letter case and whose buckets differ. Most look-ups never need the bucket, so it is computed when it
// is first asked for, and `hash` is that of the text alone: twins have it in common. They differ in TwinHash.
struct HashedKey {
  explicit HashedKey(const CIDXString& key);

  // CIDXString::GetHashKey.
  std::uint32_t Bucket() const;

  // As hard to foresee as `hash`, and another for each of a key's twins.
  std::uint32_t TwinHash() const { return hash + 1 + Bucket(); }

  // Whether the entry with this information has this key. An entry's key holds nothing but its text.
  template <typename Info>
  bool IsKeyOf(const Info& entry) const {
    return HasSize(entry) && (IsText(entry.key.Text()) || (Bucket() == entry.bucket && IsSpelling(entry.key.Text())));
  }

  template <typename Info>
  bool IsTwinOf(const Info& entry) const {
    return HasSize(entry) && Bucket() != entry.bucket && IsSpelling(entry.key.Text());
  }

  const char* text;  // the key's own
  std::size_t size;
  std::uint32_t hash;

 private:
  static constexpr std::uint32_t kNoBucket = CIDXString::kBucketCount;

  template <typename Info>
  bool HasSize(const Info& entry) const {
    return static_cast<std::size_t>(entry.key.Length()) == size;
  }
  bool IsText(const char* other) const;
  bool IsSpelling(const char* other) const;

  mutable std::uint32_t bucket = kNoBucket;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_HASHED_KEY_H_
