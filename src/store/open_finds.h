// Finds, the walks that stay open between calls, and the removed entries that the store keeps for them.
//
// Time is divided into spans. A span begins when a find is opened. More finds may be opened in a span until an entry is
// removed; the next find to be opened after a removal begins a new span. So the position of a find may be an entry that
// was removed in the find's own span or in a later one, but never an entry that was removed before that span.
//
// Invariants:
// - While any span exists, a removed entry is kept in the last one. Without a span, a removed entry is deleted at once.
// - A span and its entries may be deleted once no find of it or of an earlier span is open. Sweep deletes them in the
//   order of their removal, because a removed image may point to one that was removed later. Sweep deletes only a few
//   entries at a time, so that no call takes long because of what other calls removed.
#ifndef CATALOGCORE_STORE_OPEN_FINDS_H_
#define CATALOGCORE_STORE_OPEN_FINDS_H_

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "store/entries.h"
#include "store/key_table.h"
#include "store/walks.h"

namespace catalogcore {

struct FindSpan {
  std::atomic<std::uint32_t> openFinds{0};
  HashChain<CIDXNode> nodes;  // removed in this span; they are in no bucket, so that their links are free
  HashChain<CIDXCell> cells;
  FindSpan* next = nullptr;  // the following span
};

// Thread rule: callers hold the store's lock, except for Close and IsOpen.
class OpenFinds {
 public:
  OpenFinds();
  ~OpenFinds() { Clear(); }
  OpenFinds(const OpenFinds&) = delete;
  OpenFinds& operator=(const OpenFinds&) = delete;

  // Opens a find. Returns false on allocation failure. A walk that ends before the lock is released need not be opened.
  bool Open(SearchHandle& handle);

  // Closes a find; must be called once for each find. Ignores a handle that was not opened since the last Clear.
  void Close(const SearchHandle& handle) const;

  // Whether the find was opened since the last Clear. Close does not change the result.
  bool IsOpen(const SearchHandle& handle) const { return handle.catalogue == catalogue; }

  // Takes ownership of a removed entry. Cannot fail.
  void Keep(CIDXNode* node);
  void Keep(CIDXCell* cell);

  // Deletes at most kSweptAtOnce of the spans and entries that no find needs any more. Every call that takes the lock
  // calls Sweep. The average call removes fewer entries, so the number of kept entries decreases.
  void Sweep() {
    for (std::size_t i = 0; i < kSweptAtOnce && first && IsClosed(*first); ++i) DeleteOldest();
  }
  static constexpr std::size_t kSweptAtOnce = 64;

  // Closes all finds and deletes all kept entries.
  void Clear();

 private:
  friend class StoreInspector;

  static bool IsClosed(const FindSpan& span) { return span.openFinds.load(std::memory_order_acquire) == 0; }
  // Deletes one entry of the first span, or the span itself if it has none.
  void DeleteOldest();

  FindSpan* first = nullptr;
  FindSpan* last = nullptr;
  std::uint64_t catalogue;  // unique in the process, never 0
};

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_OPEN_FINDS_H_
