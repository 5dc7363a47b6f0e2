#include "store/hashed_key.h"

#include <cstring>

#include "base/text_hash.h"
#include "base/text_word.h"

namespace {

// Another one in each process, as far as its addresses are: names cannot be made up beforehand to have one hash.
std::uint64_t Seed() {
  static const char anchor = 0;
  return reinterpret_cast<std::uintptr_t>(&anchor);
}

}  // namespace

HashedKey::HashedKey(const CIDXString& key)
    : text(key.Text()), size(std::strlen(text)), hash(static_cast<std::uint32_t>(FoldedHash(text, size, Seed()))) {}

std::uint32_t HashedKey::Bucket() const { return ExactHash(text, size) % CIDXString::kBucketCount; }

bool HashedKey::IsText(const char* other) const { return std::memcmp(text, other, size) == 0; }

bool HashedKey::IsSpelling(const char* other) const { return EqualFolded(text, other, size); }
