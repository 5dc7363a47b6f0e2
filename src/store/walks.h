// The state of one walk over cells or images.
#ifndef CATALOGCORE_STORE_WALKS_H_
#define CATALOGCORE_STORE_WALKS_H_

#include <cstdint>
#include <type_traits>

#include "store/entries.h"

namespace catalogcore {

struct FindSpan;

// Owned by the caller, who fills it with zeros before the walk; only the store's walks read and write it.
struct SearchHandle {
  std::int32_t tree;         // the tree whose cells are walked
  std::int32_t filterTree;   // the tree of `filterCell`: kIndexTree
  CIDXCell* startCell;       // the walk never leaves its subtree
  CIDXCell* currentCell;     // reached last; null when the walk is over
  CIDXCell* filterCell;      // walks over images: the index cell in whose subtree they must lie
  CIDXNode* currentNode;     // walks over images: returned last
  std::int32_t skipVolumes;  // 1: cells whose key begins with "/Volumes" are passed over
  // Of finds that were opened (OpenFinds), so that entries may be removed between two steps; else zero.
  std::uint64_t catalogue;  // the one that the find was opened in
  FindSpan* span;           // when it was opened; there as long as that catalogue is, and the find is open
};

static_assert(std::is_trivial_v<SearchHandle>, "callers allocate handles as blocks of zeros");

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_WALKS_H_
