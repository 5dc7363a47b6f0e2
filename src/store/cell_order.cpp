#include "store/cell_order.h"

#include "store/index_data.h"

namespace catalogcore {

namespace {

// Counts parents, not the components of the key: the two differ for a root, for a moved cell and for keys like ./x,
// whose parent is the root.
std::int32_t Depth(const CIDXCell* cell) {
  std::int32_t depth = 0;
  for (const CIDXCell* up = cell->parent; up; up = up->parent) ++depth;
  return depth;
}

}  // namespace

std::int32_t CIndexData::IsParent(const CIDXCell* ancestor, const CIDXCell* cell) const {
  if (!ancestor) return 0;
  // A root contains every cell, also of the other tree.
  if (ancestor == root[kIndexTree] || ancestor == root[kFolderTree]) return 1;
  while (cell && cell != ancestor) cell = cell->parent;
  return cell ? 1 : 0;
}

std::int32_t CIndexData::CompareCell(std::int32_t, const CIDXCell* a, const CIDXCell* b) {
  if (a == b) return 0;
  if (a->parent == b->parent) return CompareCellSub(a, b);
  const std::int32_t depthA = Depth(a);
  const std::int32_t depthB = Depth(b);
  for (std::int32_t level = depthA; level > depthB; --level) a = a->parent;
  for (std::int32_t level = depthB; level > depthA; --level) b = b->parent;
  if (a == b) return depthA < depthB ? -1 : 1;  // one is an ancestor of the other
  while (a->parent != b->parent) {
    a = a->parent;
    b = b->parent;
  }
  return CompareCellSub(a, b);
}

std::int32_t CIndexData::CompareCellSub(const CIDXCell* a, const CIDXCell* b) {
  if (a == b) return 0;
  return a->parent && a->parent == b->parent && a->ordinal < b->ordinal ? -1 : 1;
}

}  // namespace catalogcore
