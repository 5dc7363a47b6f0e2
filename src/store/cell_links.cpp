// Making cells and hanging them into the tree and the hash table.
#include <memory>
#include <new>

#include "store/cell_order.h"
#include "store/index_data.h"

namespace catalogcore {

CIDXCell* CIndexData::CreateCell(std::int32_t tree, CIDXCell* parent, const CIDXString& key, const CIDXString& name,
                                 std::uint8_t attribute) {
  std::unique_ptr<CIDXCell> cell(new (std::nothrow) CIDXCell);
  if (!cell) return nullptr;
  cell->info = new (std::nothrow) CIDXCellInfo;
  if (!cell->info || cell->info->key.CopyString(key.Text()) < 0) return nullptr;
  if (cell->info->name.CopyString(name.Length() < 1 ? "" : name.Text()) < 0) return nullptr;
  cell->info->attribute = attribute;
  HashCell(tree, HashedKey(key), cell.get());
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
    if (below->info->moved) continue;  // since an earlier move
    ReleaseHashCell(tree, below);
    movedCells[tree].Append(below);
    below->info->moved = true;
  }
  return cell;
}

void CIndexData::HashCell(std::int32_t tree, const HashedKey& key, CIDXCell* cell) {
  const std::uint32_t bucket = key.Bucket();
  cell->info->bucket = static_cast<std::uint16_t>(bucket);
  cellHash[tree][bucket].Append(cell);
  cellTable[tree].Insert(key, cell);
}

void CIndexData::ReleaseHashCell(std::int32_t tree, CIDXCell* cell) {
  cellHash[tree][cell->info->bucket].Remove(cell);
  cellTable[tree].Remove(cell);
  if (cell == recentFolder) recentFolder = nullptr;
}

}  // namespace catalogcore
