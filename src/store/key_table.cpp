#include "store/key_table.h"

#include <cstring>

#include "base/text_hash.h"

namespace catalogcore {

HashedKey::HashedKey(const CIDXString& key)
    : text(key.Text()), size(std::strlen(text)), hash(FoldedHash(text, size, ProcessHashKey())) {}

std::uint32_t HashedKey::Bucket() const {
  if (bucket == kNoBucket) bucket = ExactHash(text, size) % CIDXString::kBucketCount;
  return bucket;
}

bool HashedKey::IsText(const char* other) const { return std::memcmp(text, other, size) == 0; }

bool HashedKey::IsSpelling(const char* other) const { return EqualFolded(text, other, size); }

}  // namespace catalogcore
