// The table that finds an entry by its key at once, however many there are.
#ifndef CATALOGCORE_STORE_KEY_TABLE_H_
#define CATALOGCORE_STORE_KEY_TABLE_H_

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "store/hashed_key.h"

namespace catalogcore {

// `Entry` is CIDXNode or CIDXCell: it has `tableNext`, and an `info` with the `keyHash` that the table gives it and with
// what HashedKey looks at, which does not change while the entry stands in the table. The table owns no entry.
//
// Linear hashing (W. Litwin, 1980): entries with the same slot are linked, and the table grows by one slot at a time,
// which takes its entries from the one slot that shared them. So no insertion waits for all entries to be moved, and
// none fails: where there is no memory for more slots, the links get longer.
//
// A key that has twins may have as many as there are buckets, and all of them one hash. So only the first of them stands
// under it; an entry that has a twin there is inserted under its TwinHash, where Find looks second.
//
// Invariants: slots 0 to slotCount - 1 are in use, kFirstSlots of them always; an entry stands in SlotOf its keyHash,
// which is the hash or the TwinHash of its key, behind those with the same key that were inserted before. Without
// `hasTwins` none stands under its TwinHash.
template <typename Entry>
class KeyTable {
 public:
  KeyTable() = default;
  ~KeyTable() { Clear(); }
  KeyTable(const KeyTable&) = delete;
  KeyTable& operator=(const KeyTable&) = delete;

  // The entry has this key, and its `info->bucket` is set.
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

  // An entry that does not stand in the table is left alone.
  void Remove(Entry* entry) {
    Entry** link = Slot(SlotOf(entry->info->keyHash));
    while (*link && *link != entry) link = &(*link)->tableNext;
    if (!*link) return;
    *link = entry->tableNext;
    entry->tableNext = nullptr;
    --count;
  }

  // The entry with this key that was inserted first; null if there is none.
  Entry* Find(const HashedKey& key) const {
    Entry* const entry = FindUnder(key.hash, key);
    return entry || !hasTwins ? entry : FindUnder(key.TwinHash(), key);
  }

  // Asks for the memory that Find will look at first.
  void Prefetch(const HashedKey& key) const { PrefetchEntry(*Slot(SlotOf(key.hash))); }

  std::uint64_t Count() const { return count; }

  // Forgets all entries, which may be gone already, and gives back the memory.
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
  // Fewer entries than this lie in the processor's cache, where a longer link costs less than the memory for more slots.
  static constexpr std::uint64_t kFewEntries = 1 << 16;
  // More than one, to make up for growth that found no memory; not all, so that no insertion takes long.
  static constexpr int kMaxSplits = 2;
  static constexpr std::uint64_t kSplitsAhead = 4;
  static constexpr std::uint64_t kMaxSlots = std::uint64_t{1} << 32;  // as many as there are hashes

  // The entries that there are slots for.
  std::uint64_t Capacity() const { return count < kFewEntries ? slotCount + slotCount / 4 : slotCount; }

  // The low bits of the hash, as many as number all slots; one less where that slot is yet to come.
  std::uint64_t SlotOf(std::uint32_t hash) const {
    const std::uint64_t slot = hash & (2 * half - 1);
    return slot < slotCount ? slot : slot - half;
  }

  // Segment i holds kFirstSlots << i slots, so that the first slot of each, counted from kFirstSlots on, is a power of 2.
  Entry** Slot(std::uint64_t slot) const {
    const std::uint64_t place = slot + kFirstSlots;
    const auto bits = std::bit_width(place) - 1;
    return segments[bits - kFirstBits] + (place ^ std::uint64_t{1} << bits);
  }

  // Null is no harm.
  static void PrefetchEntry(const Entry* entry) {
    constexpr std::uintptr_t kToLink = 72, kToKey = 136;  // about where an image has its link and hash, and its key
    const auto address = reinterpret_cast<std::uintptr_t>(entry);
    __builtin_prefetch(reinterpret_cast<const void*>(address + kToLink));
    __builtin_prefetch(reinterpret_cast<const void*>(address + kToKey));
  }

  Entry* FindUnder(std::uint32_t hash, const HashedKey& key) const {
    Entry* entry = *Slot(SlotOf(hash));
    while (entry) {
      PrefetchEntry(entry);  // its key is wanted as soon as its hash is seen to be the one
      if (entry->info->keyHash == hash && key.IsKeyOf(*entry->info)) break;
      entry = entry->tableNext;
    }
    return entry;
  }

  static bool IsTwinUnder(std::uint32_t hash, const HashedKey& key, const Entry& entry) {
    return entry.info->keyHash == hash && key.IsTwinOf(*entry.info);
  }

  // Adds one slot; false if there is no memory for it.
  bool Split() {
    if (slotCount == kMaxSlots || !MakeRoom()) return false;
    const std::uint64_t source = slotCount - half;
    // The slots come in turn, so what later splits will look at is on its way by then.
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

  // Makes the segment of the slot to come, if that is its first; false if there is no memory.
  bool MakeRoom() {
    const std::uint64_t slots = slotCount + kFirstSlots;
    if (!std::has_single_bit(slots)) return true;
    auto* const segment = static_cast<Entry**>(std::calloc(static_cast<std::size_t>(slots), sizeof(Entry*)));
    segments[std::bit_width(slots) - 1 - kFirstBits] = segment;
    return segment != nullptr;
  }

  Entry* firstSlots[kFirstSlots] = {};
  Entry** segments[33 - kFirstBits] = {firstSlots};
  std::uint64_t slotCount = kFirstSlots;
  std::uint64_t half = kFirstSlots;  // the largest power of 2 that is not above slotCount
  std::uint64_t count = 0;
  bool hasTwins = false;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_KEY_TABLE_H_
