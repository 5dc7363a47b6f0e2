// The table that finds an entry by its key at once, however many there are.
#ifndef CATALOGCORE_STORE_KEY_TABLE_H_
#define CATALOGCORE_STORE_KEY_TABLE_H_

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "base/folded_text.h"
#include "base/idx_string.h"

// `Entry` is CIDXNode or CIDXCell: it has `tableNext`, `info->key` and `info->keyHash`. The table owns no entry, and an
// entry's key does not change while it stands in the table.
//
// Two keys are the same when they share a bucket of the hash tables (CIDXString::GetHashKey) and are equal but for
// letter case. Both go into one hash, which the entry keeps.
//
// Linear hashing (W. Litwin, 1980): entries with the same slot are linked, and the table grows by one slot at a time,
// which takes its entries from the one slot that shared them. So no insertion waits for all entries to be moved, and
// none fails: where there is no memory for more slots, the links get longer.
//
// Invariants: slots 0 to slotCount - 1 are in use, kFirstSlots of them always; an entry stands in SlotOf its hash, behind
// those with the same key that were inserted before.
template <typename Entry>
class KeyTable {
 public:
  KeyTable() = default;
  ~KeyTable() { Clear(); }
  KeyTable(const KeyTable&) = delete;
  KeyTable& operator=(const KeyTable&) = delete;

  void Insert(Entry* entry) {
    entry->info->keyHash = HashOf(entry->info->key);
    Append(Slot(SlotOf(entry->info->keyHash)), entry);
    ++count;
    while (count > slotCount + slotCount / 2 && Split()) {
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
  Entry* Find(const CIDXString& key) const {
    const std::uint32_t hash = HashOf(key);
    Entry* entry = *Slot(SlotOf(hash));
    while (entry && (entry->info->keyHash != hash || !IsSameKey(entry->info->key, key))) entry = entry->tableNext;
    return entry;
  }

  std::uint64_t Count() const { return count; }

  // Forgets all entries, which may be gone already, and gives back the memory.
  void Clear() {
    for (Entry**& segment : segments) {
      std::free(segment);
      segment = nullptr;
    }
    std::memset(firstSlots, 0, sizeof firstSlots);
    slotCount = kFirstSlots;
    count = 0;
  }

 private:
  static constexpr int kFirstBits = 4;
  static constexpr std::uint64_t kFirstSlots = std::uint64_t{1} << kFirstBits;
  static constexpr std::uint64_t kMaxSlots = std::uint64_t{1} << 32;  // as many as there are hashes

  std::uint32_t HashOf(const CIDXString& key) const {
    const std::uint64_t seed = reinterpret_cast<std::uintptr_t>(this) + key.GetHashKey();
    return static_cast<std::uint32_t>(FoldedHash(key.Text(), std::strlen(key.Text()), seed));
  }

  static bool IsSameKey(const CIDXString& a, const CIDXString& b) {
    return std::strcmp(a.Text(), b.Text()) == 0 || (a == b && a.GetHashKey() == b.GetHashKey());
  }

  // The low bits of the hash, as many as number all slots; one less where that slot is yet to come.
  std::uint64_t SlotOf(std::uint32_t hash) const {
    const std::uint64_t half = std::bit_floor(slotCount);
    const std::uint64_t slot = hash & (2 * half - 1);
    return slot < slotCount ? slot : slot - half;
  }

  // Segment i holds the slots with i + kFirstBits significant bits in their number.
  static std::size_t SegmentOf(std::uint64_t slot) {
    return static_cast<std::size_t>(std::bit_width(slot)) - kFirstBits;
  }

  Entry** Slot(std::uint64_t slot) const {
    if (slot < kFirstSlots) return &firstSlots[slot];
    return &segments[SegmentOf(slot) - 1][slot - std::bit_floor(slot)];
  }

  static void Append(Entry** slot, Entry* entry) {
    while (*slot) slot = &(*slot)->tableNext;
    *slot = entry;
    entry->tableNext = nullptr;
  }

  // Adds one slot; false if there is no memory for it.
  bool Split() {
    const std::uint64_t half = std::bit_floor(slotCount);
    if (slotCount == kMaxSlots || (slotCount == half && !AddSegment(half))) return false;
    Entry** from = Slot(slotCount - half);
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
    return true;
  }

  bool AddSegment(std::uint64_t slots) {
    auto* const segment = static_cast<Entry**>(std::calloc(static_cast<std::size_t>(slots), sizeof(Entry*)));
    segments[SegmentOf(slots) - 1] = segment;
    return segment != nullptr;
  }

  mutable Entry* firstSlots[kFirstSlots] = {};
  Entry** segments[32 - kFirstBits] = {};
  std::uint64_t slotCount = kFirstSlots;
  std::uint64_t count = 0;
};

#endif  // CATALOGCORE_STORE_KEY_TABLE_H_
