// The chain of one hash bucket: a doubly linked list that runs through the entries themselves.
#ifndef CATALOGCORE_STORE_HASH_CHAIN_H_
#define CATALOGCORE_STORE_HASH_CHAIN_H_

namespace catalogcore {

// `Entry` is CIDXNode or CIDXCell: it has `hashPrev` and `hashNext`. The chain owns nothing.
//
// Invariants: entries stand in the order of their appending; `head` and `tail` are both null or both set. An
// entry that stands in no chain has both links null, so that taking it out twice is harmless.
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

  // Takes every entry out and hands it to `release`, which may delete it.
  template <typename Release>
  void Clear(Release release) {
    while (head) {
      Entry* const entry = head;
      Remove(entry);
      release(entry);
    }
  }
};

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_HASH_CHAIN_H_
