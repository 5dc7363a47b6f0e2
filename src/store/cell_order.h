// Pre-order of the cells of a tree: a cell comes before its descendants, a sibling before those linked later.
#ifndef CATALOGCORE_STORE_CELL_ORDER_H_
#define CATALOGCORE_STORE_CELL_ORDER_H_

#include "store/entries.h"

namespace catalogcore {

// The cell after `current` in the pre-order of the subtree of `start`; null after the last.
inline CIDXCell* NextInPreOrder(const CIDXCell* start, CIDXCell* current) {
  if (current->firstChild) return current->firstChild;
  while (current && current != start) {
    if (current->nextSibling) return current->nextSibling;
    current = current->parent;
  }
  return nullptr;
}

}  // namespace catalogcore

#endif  // CATALOGCORE_STORE_CELL_ORDER_H_
