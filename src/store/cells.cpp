// Cells of both trees: creating, removing, changing and moving them, and their places in child lists and buckets.
#include <cstring>
#include <memory>
#include <new>

#include "catalogcore.h"
#include "store/cell_order.h"
#include "store/index_data.h"

namespace catalogcore {

namespace {

// More than any real key has, and few enough to bound the memory that one record of a file can use.
constexpr std::int32_t kMaxLevels[kTreeCount] = {64, 512};

constexpr std::int32_t kUncut = -1;

// Cuts the text at its last "/" by writing a zero byte there. `end` is where the text ends: the result of the previous
// cut, or kUncut. Returns the position of the cut, kUncut if no "/" is left. The length stays the same, so that a text
// cut to nothing still names the cell with the empty key, not the root.
std::int32_t CutLastComponent(CIDXString& key, std::int32_t end) {
  if (end == 0) return kUncut;
  return key.ReplaceReverse('/', 0, end == kUncut ? -1 : end - 1);
}

bool Refuses(const CIDXCell* cell, std::uint8_t protection, std::int32_t force) {
  return force == 0 && (cell->info->attribute & protection) != 0;
}

}  // namespace

CIDXCell* CIndexData::SearchCell(std::int32_t tree, const CIDXString& key) const {
  return key.Length() == 0 ? root[tree] : cellTable[tree].Find(HashedKey(key));
}

std::int32_t CIndexData::IsValidKey(std::int32_t tree, const CIDXString& key) {
  const char* const text = key.Text();
  if (*text == 0) return tree == kFolderTree ? 1 : 0;
  if (tree == kIndexTree && *text == '/') return 0;
  std::int32_t levels = *text == '/' ? 0 : 1;
  const char* at = text;
  for (; *at != 0; ++at) {
    if (*at != '/') continue;
    if (at[1] == '/' || at[1] == 0) return 0;
    ++levels;
  }
  return at - text <= kMaxKeyBytes && levels <= kMaxLevels[tree] ? 1 : 0;
}

std::uint32_t CIndexData::AddCell(std::int32_t tree, const CIDXString& key, const CIDXString& name,
                                  std::uint8_t attribute) {
  if (SearchCell(tree, key)) return StoreIndexExists;
  if (!IsValidKey(tree, key)) return StoreInvalidKey;
  CIDXString path;
  if (path.CopyString(key.Text()) < 0) return StoreFailed;

  // Cuts the path back to the nearest existing ancestor. If there is none, creates the first component under the root.
  CIDXCell* cell = nullptr;
  std::int32_t cut = CutLastComponent(path, kUncut);
  while (cut != kUncut && !(cell = SearchCell(tree, path))) cut = CutLastComponent(path, cut);
  CIDXCell* parent = cell;
  if (!cell) {
    parent = root[tree];
    cell = CreateCell(tree, parent, path, name, attribute);
  }
  // Restores the cut components from the front and creates a cell for each.
  while (cell && path.Replace(0, '/', -1) >= 0) {
    parent = cell;
    cell = CreateCell(tree, parent, path, name, attribute);
  }
  if (cell) return StoreOk;

  while (parent) {
    CIDXCell* const next = parent->parent;
    RemoveCellSub(tree, parent, 0);
    parent = next;
  }
  return StoreFailed;
}

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
  // This is intended also for a cell that has children: a moved cell leaves them behind.
  child->firstChild = nullptr;
  child->lastChild = nullptr;
  return child;
}

void CIndexData::HashCell(std::int32_t tree, const HashedKey& key, CIDXCell* cell) {
  const std::uint32_t bucket = key.Bucket();
  cell->info->bucket = static_cast<std::uint16_t>(bucket);
  cellHash[tree][bucket].Append(cell);
  cellTable[tree].Insert(key, cell);
}

std::uint32_t CIndexData::RemoveCell(std::int32_t tree, const CIDXString& key, std::int32_t force) {
  CIDXCell* const cell = SearchCell(tree, key);
  return cell ? RemoveCellSub(tree, cell, force) : StoreIndexNotFound;
}

std::uint32_t CIndexData::RemoveCellSub(std::int32_t tree, CIDXCell* cell, std::int32_t force) {
  if (cell->firstChild) return StoreIndexHasChildren;
  if (Refuses(cell, IDXATTR_NOREMOVE, force)) return StoreRemoveProtected;
  if (cell == root[tree]) return StoreInvalidKey;
  for (CIDXNode* node = cell->firstNode; node;) {
    CIDXNode* const next = node->next[tree];
    const std::uint32_t result = RemoveNodeSub(node, force);
    if (result != StoreOk) return result;
    node = next;
  }
  DeleteSkipList(cell);
  ReleaseCell(cell);
  ReleaseHashCell(tree, cell);
  openFinds.Keep(cell);
  return StoreOk;
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

void CIndexData::ReleaseHashCell(std::int32_t tree, CIDXCell* cell) {
  cellHash[tree][cell->info->bucket].Remove(cell);
  cellTable[tree].Remove(cell);
  if (cell == recentFolder) recentFolder = nullptr;
}

std::uint32_t CIndexData::RenameCell(std::int32_t tree, const CIDXString& key, const CIDXString& newName,
                                     std::int32_t force) {
  CIDXCell* const cell = SearchCell(tree, key);
  if (!cell) return StoreIndexNotFound;
  if (Refuses(cell, IDXATTR_NORENAME, force)) return StoreRenameProtected;
  return cell->info->name.CopyString(newName.Text()) < 0 ? StoreFailed : StoreOk;
}

std::uint32_t CIndexData::ChangeAttributeCell(std::int32_t tree, const CIDXString& key, std::uint8_t attribute) {
  CIDXCell* const cell = SearchCell(tree, key);
  if (!cell) return StoreIndexNotFound;
  cell->info->attribute = attribute;
  return StoreOk;
}

std::uint32_t CIndexData::MoveCell(std::int32_t tree, const CIDXString& oldKey, const CIDXString& newKey,
                                   std::int32_t force) {
  CIDXCell* const cell = SearchCell(tree, oldKey);
  if (!cell) return StoreIndexNotFound;
  if (!IsValidKey(tree, newKey)) return StoreInvalidKey;
  if (SearchCell(tree, newKey)) return StoreIndexExists;
  CIDXString parentKey;
  if (parentKey.CopyString(newKey.Text()) < 0) return StoreFailed;
  CutLastComponent(parentKey, kUncut);
  CIDXCell* const newParent = SearchCell(tree, parentKey);
  if (!newParent) return StoreIndexNotFound;
  if (newParent == cell->parent) return StoreOk;
  if (IsParent(cell, newParent)) return StoreInvalidKey;
  if (Refuses(cell, IDXATTR_NOMOVE, force)) return StoreMoveProtected;

  IsolateCell(tree, cell);
  LinkCells(newParent, cell);
  // The keys stay the same: the subtree has left the hash table, so no look-up by the old key finds a cell to change.
  return StoreOk;
}

// Takes the cell out of its parent's child list, and the cell and its descendants out of the hash table.
CIDXCell* CIndexData::IsolateCell(std::int32_t tree, CIDXCell* cell) {
  ReleaseCell(cell);
  for (CIDXCell* below = cell; below; below = NextInPreOrder(cell, below)) {
    if (below->info->moved) continue;  // by an earlier move
    ReleaseHashCell(tree, below);
    movedCells[tree].Append(below);
    below->info->moved = true;
  }
  return cell;
}

}  // namespace catalogcore
