// Finding entries by key: the key with its hashes, the chain of one bucket, and the key table.
#ifndef CATALOGCORE_STORE_KEY_TABLE_H_
#define CATALOGCORE_STORE_KEY_TABLE_H_

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "base/idx_string.h"

namespace catalogcore {

// A key whose size and hash are computed once. The bucket is computed when it is first needed, which most look-ups
// avoid.
//
// Two keys are the same if their texts differ at most in the case of letters and their buckets are equal. They are
// twins if only the texts satisfy this. `hash` ignores case, so that twins have the same `hash`.
struct HashedKey {
  explicit HashedKey(const CIDXString& key);

  // The result of CIDXString::GetHashKey.
  std::uint32_t Bucket() const;

  // A second hash, which differs between twins. As unpredictable as `hash`.
  std::uint32_t TwinHash() const { return hash + 1 + Bucket(); }

  // Whether the entry with this record has this key. The entry's key must not contain zero bytes.
  template <typename Info>
  bool IsKeyOf(const Info& entry) const {
    return HasSize(entry) && (IsText(entry.key.Text()) || (Bucket() == entry.bucket && IsSpelling(entry.key.Text())));
  }

  // Whether the key of the entry with this record is a twin of this key.
  template <typename Info>
  bool IsTwinOf(const Info& entry) const {
    return HasSize(entry) && Bucket() != entry.bucket && IsSpelling(entry.key.Text());
  }

  const char* text;  // not a copy
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

// The entries of one bucket: a doubly linked list in the order of appending. `Entry` is CIDXNode or CIDXCell, with the
// links `hashPrev` and `hashNext`. The chain does not own its entries.
//
// Invariants: `head` and `tail` are both null or both set. Both links of an entry outside any chain are null; Remove
// ignores such an entry.
template <typename Entry>
struct HashChain {
  Entry* head = nullptr;
  Entry* tail = nullptr;

  void Append(Entry* entry) {
    entry->hashPrev = tail;
    entry->hashNext = nullptr;
    // NOLINTNEXTLINE(clang-analyzer-cplusplus.NewDelete): an entry leaves its chain before it is deleted
    (tail ? tail->hashNext : head) = entry;
    tail = entry;
  }

  void Remove(Entry* entry) {
    if (!entry->hashPrev && head != entry) return;
    (entry->hashPrev ? entry->hashPrev->hashNext : head) = entry->hashNext;
    (entry->hashNext ? entry->hashNext->hashPrev : tail) = entry->hashPrev;
    entry->hashPrev = nullptr;
    entry->hashNext = nullptr;
  }

  // Removes every entry and passes it to `release`, which may delete it.
  template <typename Release>
  void Clear(Release release) {
    while (head) {
      Entry* const entry = head;
      Remove(entry);
      release(entry);
    }
  }
};

// A hash table that finds an entry by its key in constant time, at any number of entries. `Entry` is CIDXNode or
// CIDXCell. The table sets its `tableNext` and `info->keyHash`. Its `info->key` and `info->bucket` must not change
// while the entry is in the table. The table does not own its entries.
//
// The table uses linear hashing (W. Litwin, 1980): the entries of a slot form a list, and the table grows by one slot
// at a time, which divides the list of one other slot. So an insertion never waits until all entries are moved. An
// insertion never fails either: if more slots cannot be allocated, the lists get longer.
//
// A key may have as many twins as there are buckets, all with the same hash. Only one of them is inserted under that
// hash; an entry that finds a twin there is inserted under its TwinHash, where Find looks second.
//
// Invariants: slots 0 to slotCount - 1 are in use, and slotCount >= kFirstSlots. An entry is in the list of
// SlotOf(keyHash), after older entries with the same key. `keyHash` is the hash or the TwinHash of its key. If
// `hasTwins` is false, no entry is under its TwinHash.
template <typename Entry>
class KeyTable {
 public:
  KeyTable() = default;
  ~KeyTable() { Clear(); }
  KeyTable(const KeyTable&) = delete;
  KeyTable& operator=(const KeyTable&) = delete;

  // Inserts an entry with this key, whose `info->bucket` is set.
  void Insert(const HashedKey& key, Entry* entry) {
    entry->info->keyHash = key.hash;
    Entry** end = Slot(SlotOf(key.hash));
    while (*end && !IsTwinUnder(key.hash, key, **end)) end = &(*end)->tableNext;
    if (*end) {
      hasTwins = true;
      entry->info->keyHash = key.TwinHash();
      end = Slot(SlotOf(entry->info->keyHash));
      while (*end) end = &(*end)->tableNext;
    }
    *end = entry;
    entry->tableNext = nullptr;
    ++count;
    for (int splits = 0; splits < kMaxSplits && count > Capacity() && Split(); ++splits) {
    }
  }

  // Removes the entry; ignores an entry that is not in the table.
  void Remove(Entry* entry) {
    Entry** link = Slot(SlotOf(entry->info->keyHash));
    while (*link && *link != entry) link = &(*link)->tableNext;
    if (!*link) return;
    *link = entry->tableNext;
    entry->tableNext = nullptr;
    --count;
  }

  // Returns the oldest entry with this key, or null.
  Entry* Find(const HashedKey& key) const {
    Entry* const entry = FindUnder(key.hash, key);
    return entry || !hasTwins ? entry : FindUnder(key.TwinHash(), key);
  }

  // Prefetches the memory that Find reads first.
  void Prefetch(const HashedKey& key) const { PrefetchEntry(*Slot(SlotOf(key.hash))); }

  std::uint64_t Count() const { return count; }

  // Removes all entries without reading them, and frees the slots.
  void Clear() {
    for (Entry**& segment : segments) {
      if (segment != firstSlots) std::free(segment);
      segment = nullptr;
    }
    segments[0] = firstSlots;
    std::fill_n(firstSlots, kFirstSlots, nullptr);
    slotCount = kFirstSlots;
    half = kFirstSlots;
    count = 0;
    hasTwins = false;
  }

 private:
  static constexpr int kFirstBits = 4;
  static constexpr std::uint64_t kFirstSlots = std::uint64_t{1} << kFirstBits;
  // Fewer entries than this fit in the processor's cache, where a longer list costs less than the memory for more
  // slots.
  static constexpr std::uint64_t kFewEntries = 1 << 16;
  // More than 1, so that the table catches up after failed growth; limited, so that no insertion takes long.
  static constexpr int kMaxSplits = 2;
  static constexpr std::uint64_t kSplitsAhead = 4;
  static constexpr std::uint64_t kMaxSlots = std::uint64_t{1} << 32;  // the number of hashes

  // The number of entries above which the table grows.
  std::uint64_t Capacity() const { return count < kFewEntries ? slotCount + slotCount / 4 : slotCount; }

  // The low bits of the hash, as many as the slot numbers have; without the highest bit if that slot does not exist
  // yet.
  std::uint64_t SlotOf(std::uint32_t hash) const {
    const std::uint64_t slot = hash & (2 * half - 1);
    return slot < slotCount ? slot : slot - half;
  }

  // Segment i has kFirstSlots << i slots. Counted from kFirstSlots, the first slot of each segment is a power of 2.
  Entry** Slot(std::uint64_t slot) const {
    const std::uint64_t place = slot + kFirstSlots;
    const auto bits = std::bit_width(place) - 1;
    return segments[bits - kFirstBits] + (place ^ std::uint64_t{1} << bits);
  }

  // `entry` may be null.
  static void PrefetchEntry(const Entry* entry) {
    constexpr std::uintptr_t kToLink = 72, kToKey = 136;  // where an image has its link and hash, and its key
    const auto address = reinterpret_cast<std::uintptr_t>(entry);
    __builtin_prefetch(reinterpret_cast<const void*>(address + kToLink));
    __builtin_prefetch(reinterpret_cast<const void*>(address + kToKey));
  }

  Entry* FindUnder(std::uint32_t hash, const HashedKey& key) const {
    Entry* entry = *Slot(SlotOf(hash));
    while (entry) {
      PrefetchEntry(entry);  // its key is needed if its hash matches
      if (entry->info->keyHash == hash && key.IsKeyOf(*entry->info)) break;
      entry = entry->tableNext;
    }
    return entry;
  }

  static bool IsTwinUnder(std::uint32_t hash, const HashedKey& key, const Entry& entry) {
    return entry.info->keyHash == hash && key.IsTwinOf(*entry.info);
  }

  // Adds one slot. Returns false if the allocation fails.
  bool Split() {
    if (slotCount == kMaxSlots || !AllocateSegment()) return false;
    const std::uint64_t source = slotCount - half;
    // Slots are split in order, so the table prefetches what a later split reads.
    PrefetchEntry(*Slot(source + kSplitsAhead));
    Entry** from = Slot(source);
    Entry** to = Slot(slotCount);
    while (Entry* const entry = *from) {
      const bool moves = (entry->info->keyHash & half) != 0;
      Entry**& end = moves ? to : from;
      if (moves) {
        *from = entry->tableNext;
        *to = entry;
        entry->tableNext = nullptr;
      }
      end = &entry->tableNext;
    }
    ++slotCount;
    if (slotCount == 2 * half) half = slotCount;
    return true;
  }

  // Allocates a segment if the next slot is the first of one. Returns false if the allocation fails.
  bool AllocateSegment() {
    const std::uint64_t slots = slotCount + kFirstSlots;
    if (!std::has_single_bit(slots)) return true;
    auto* const segment = static_cast<Entry**>(std::calloc(static_cast<std::size_t>(slots), sizeof(Entry*)));
    segments[std::bit_width(slots) - 1 - kFirstBits] = segment;
    return segment != nullptr;
  }

  Entry* firstSlots[kFirstSlots] = {};
  Entry** segments[33 - kFirstBits] = {firstSlots};
  std::uint64_t slotCount = kFirstSlots;
  std::uint64_t half = kFirstSlots;  // the largest power of 2 that is at most slotCount
  std::uint64_t count = 0;
  bool hasTwins = false;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_KEY_TABLE_H_
