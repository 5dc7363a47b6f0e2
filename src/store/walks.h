// The state of a walk, an iteration over the cells of a subtree or over their images (see entries.h).
#ifndef CATALOGCORE_STORE_WALKS_H_
#define CATALOGCORE_STORE_WALKS_H_

#include <cstdint>
#include <type_traits>

#include "store/entries.h"

namespace catalogcore {

struct FindSpan;

// The caller owns the handle and fills it with zeros before the walk. Only the store reads and writes its fields.
struct SearchHandle {
  std::int32_t tree;         // the tree whose cells are walked
  std::int32_t filterTree;   // the tree of `filterCell`: kIndexTree
  CIDXCell* startCell;       // the walk stays in the subtree of this cell
  CIDXCell* currentCell;     // the cell reached last; null at the end of the walk
  CIDXCell* filterCell;      // walks over images: returns only images whose index is in the subtree of this cell
  CIDXNode* currentNode;     // walks over images: the image returned last
  std::int32_t skipVolumes;  // 1: skip cells whose key begins with "/Volumes"
  // Set by OpenFinds::Open, zero for other walks.
  std::uint64_t catalogue;  // the number of the catalogue in which the find was opened
  FindSpan* span;           // the time of opening; valid while that catalogue exists and the find is open
};

static_assert(std::is_trivial_v<SearchHandle>, "callers allocate handles as zeroed blocks");

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_WALKS_H_
