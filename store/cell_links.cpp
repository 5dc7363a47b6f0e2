// Making cells and hanging them into the tree and the hash table.
#include <memory>
#include <new>

#include "store/index_data.h"
#include "store/pre_order.h"

CIDXCell* CIndexData::CreateCell(std::int32_t tree, CIDXCell* parent, const CIDXString& key, const CIDXString& name,
                                 std::uint8_t attribute) {
  std::unique_ptr<CIDXCell> cell(new (std::nothrow) CIDXCell);
  if (!cell) return nullptr;
  cell->info = new (std::nothrow) CIDXCellInfo;
  if (!cell->info || cell->info->key.CopyString(key.Text()) < 0) return nullptr;
  if (cell->info->name.CopyString(name.Length() < 1 ? "" : name.Text()) < 0) return nullptr;
  cell->info->attribute = attribute;
  HashCell(tree, key.GetHashKey(), cell.get());
  return LinkCells(parent, cell.release());
}

CIDXCell* CIndexData::LinkCells(CIDXCell* parent, CIDXCell* child) {
  if (!parent) return child;
  CIDXCell* const last = parent->lastChild;
  child->parent = parent;
  child->prevSibling = last;
  child->nextSibling = nullptr;
  child->ordinal = last ? last->ordinal + 1 : 0;
  (last ? last->nextSibling : parent->firstChild) = child;
  parent->lastChild = child;
  // Meant also for a cell that has children: a moved cell leaves them behind.
  child->firstChild = nullptr;
  child->lastChild = nullptr;
  return child;
}

CIDXCell* CIndexData::ReleaseCell(CIDXCell* cell) {
  CIDXCell* const parent = cell->parent;
  if (parent && parent->firstChild == cell) parent->firstChild = cell->nextSibling;
  if (parent && parent->lastChild == cell) parent->lastChild = cell->prevSibling;
  if (cell->prevSibling) cell->prevSibling->nextSibling = cell->nextSibling;
  if (cell->nextSibling) cell->nextSibling->prevSibling = cell->prevSibling;
  cell->parent = nullptr;
  cell->prevSibling = nullptr;
  cell->nextSibling = nullptr;
  return cell;
}

CIDXCell* CIndexData::IsolateCell(std::int32_t tree, CIDXCell* cell) {
  ReleaseCell(cell);
  for (CIDXCell* below = cell; below; below = NextInPreOrder(cell, below)) {
    if (below->moved) continue;  // since an earlier move
    ReleaseHashCell(tree, below->info->key.GetHashKey(), below);
    movedCells[tree].Append(below);
    below->moved = true;
  }
  return cell;
}

void CIndexData::HashCell(std::int32_t tree, std::uint32_t hash, CIDXCell* cell) {
  if (hash >= CIDXString::kBucketCount) return;
  cellHash[tree][hash].Append(cell);
  cellTable[tree].Insert(cell);
}

void CIndexData::ReleaseHashCell(std::int32_t tree, std::uint32_t hash, CIDXCell* cell) {
  if (!cell || hash >= CIDXString::kBucketCount) return;
  cellHash[tree][hash].Remove(cell);
  cellTable[tree].Remove(cell);
}
