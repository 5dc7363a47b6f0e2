// The finds that are open, and the entries that were removed under them.
//
// Time is cut into spans. A span begins with the opening of finds and goes on with removals; the opening that follows a
// removal begins the next one. So a find may stand on what was removed in its own span or in a later one, and on nothing
// that was removed before.
//
// What always holds:
// - While there is a span, a removed entry waits in the last one; without a span it is deleted at once.
// - A span and all that waits in it may be deleted once neither it nor any before it has an open find. Sweep looks at
//   that, and deletes what was removed first before what was removed later, which it may lead to. So that no call waits
//   long for what others left behind, it deletes a few at a time: the rest of them, until later calls come to it, is what
//   waits without need.
#ifndef CATALOGCORE_STORE_OPEN_FINDS_H_
#define CATALOGCORE_STORE_OPEN_FINDS_H_

#include <atomic>
#include <cstddef>
#include <cstdint>

#include "store/entries.h"
#include "store/hash_chain.h"
#include "store/walks.h"

namespace catalogcore {

struct FindSpan {
  std::atomic<std::uint32_t> openFinds{0};
  HashChain<CIDXNode> nodes;  // removed in it, by the links that their buckets need no more
  HashChain<CIDXCell> cells;
  FindSpan* next = nullptr;  // the later one
};

// Callers hold the store's region, but for Close and IsOpen, which ask for nothing.
class OpenFinds {
 public:
  OpenFinds();
  ~OpenFinds() { Clear(); }
  OpenFinds(const OpenFinds&) = delete;
  OpenFinds& operator=(const OpenFinds&) = delete;

  // Counts the find as open; false without memory. A walk that ends before the region is left needs no opening.
  bool Open(SearchHandle& handle);

  // Once for each that was opened. Nothing for a find that is not open, or was before the last Clear.
  void Close(const SearchHandle& handle) const;

  // Whether the find was opened, and not before the last Clear. Closing changes nothing of it.
  bool IsOpen(const SearchHandle& handle) const { return handle.catalogue == catalogue; }

  // Takes an entry over that stands in no list and no table any more. Cannot fail.
  void Keep(CIDXNode* node);
  void Keep(CIDXCell* cell);

  // Deletes at most kSweptAtOnce of what no find can stand on any more. To be called by whoever enters the region: a call
  // removes fewer on average, so that what waits gets less.
  void Sweep() {
    for (std::size_t i = 0; i < kSweptAtOnce && first && IsClosed(*first); ++i) DeleteOldest();
  }
  static constexpr std::size_t kSweptAtOnce = 64;

  // Deletes everything. No find is open afterwards.
  void Clear();

 private:
  friend class StoreInspector;

  static bool IsClosed(const FindSpan& span) { return span.openFinds.load(std::memory_order_acquire) == 0; }
  // Of the first span, an entry, or the span itself if nothing waits in it.
  void DeleteOldest();

  FindSpan* first = nullptr;
  FindSpan* last = nullptr;
  std::uint64_t catalogue;  // never the same twice in a process, and never 0
};

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_OPEN_FINDS_H_
