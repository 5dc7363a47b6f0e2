// Ancestry and pre-order of cells.
#include <algorithm>

#include "store/index_data.h"

std::int32_t CIndexData::IsParent(const CIDXCell* ancestor, const CIDXCell* cell) const {
  if (!ancestor) return 0;
  // A root contains everything, whichever tree the cell is in.
  if (ancestor == root[kIndexTree] || ancestor == root[kFolderTree]) return 1;
  while (cell && cell != ancestor) cell = cell->parent;
  return cell ? 1 : 0;
}

std::int32_t CIndexData::CompareCell(std::int32_t, const CIDXCell* a, const CIDXCell* b) {
  if (a == b) return 0;
  if (!a || !b) return a ? 1 : -1;
  const std::int32_t depthA = a->info->key.Count('/');
  const std::int32_t depthB = b->info->key.Count('/');
  for (std::int32_t level = std::max(depthA, depthB); level >= 0; --level) {
    if (a == b) return depthA < depthB ? -1 : 1;  // one was an ancestor of the other
    if (a->parent == b->parent) break;
    // A root is everyone's ancestor; its key has as many "/" as its children's, so depths do not tell.
    if (!a->parent || !b->parent) return a->parent ? 1 : -1;
    if (level <= depthA) a = a->parent;
    if (level <= depthB) b = b->parent;
  }
  return CompareCellSub(a, b);
}

std::int32_t CIndexData::CompareCellSub(const CIDXCell* a, const CIDXCell* b) {
  if (a == b) return 0;
  return a->parent && a->parent == b->parent && a->ordinal < b->ordinal ? -1 : 1;
}
