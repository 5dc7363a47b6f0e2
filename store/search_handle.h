// The state of one walk over cells or images.
#ifndef CATALOGCORE_STORE_SEARCH_HANDLE_H_
#define CATALOGCORE_STORE_SEARCH_HANDLE_H_

#include <cstdint>
#include <type_traits>

#include "store/entries.h"

// Owned by the caller, who fills it with zeros before the walk; only the store's walks read and write it.
struct SearchHandle {
  std::int32_t tree;         // the tree whose cells are walked
  std::int32_t filterTree;   // the tree of `filterCell`: kIndexTree
  CIDXCell* startCell;       // the walk never leaves its subtree
  CIDXCell* currentCell;     // reached last; null when the walk is over
  CIDXCell* filterCell;      // walks over images: the index cell in whose subtree they must lie
  CIDXNode* currentNode;     // walks over images: returned last
  std::int32_t skipVolumes;  // 1: cells whose key begins with "/Volumes" are passed over
};

static_assert(std::is_trivial_v<SearchHandle>, "callers allocate handles as blocks of zeros");

#endif  // CATALOGCORE_STORE_SEARCH_HANDLE_H_
