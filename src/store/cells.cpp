// The public operations on cells.
#include "catalogcore.h"
#include "store/index_data.h"

namespace catalogcore {

namespace {

constexpr std::int32_t kUncut = -1;

// Cuts the text at its last "/" by a zero byte in its place; the length stays, so that a copy cut down to the empty
// text still names the cell with the empty key, not the root. `end` is where the text ends: at the cut before, or
// kUncut. Returns the position of the cut, kUncut if there is no "/" left.
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

std::uint32_t CIndexData::AddCell(std::int32_t tree, const CIDXString& key, const CIDXString& name,
                                  std::uint8_t attribute) {
  if (SearchCell(tree, key)) return StoreIndexExists;
  if (!IsValidKey(tree, key)) return StoreInvalidKey;
  CIDXString path;
  if (path.CopyString(key.Text()) < 0) return StoreFailed;

  // Up to the nearest ancestor there is; without one the first component hangs under the root.
  CIDXCell* cell = nullptr;
  std::int32_t cut = CutLastComponent(path, kUncut);
  while (cut != kUncut && !(cell = SearchCell(tree, path))) cut = CutLastComponent(path, cut);
  CIDXCell* parent = cell;
  if (!cell) {
    parent = root[tree];
    cell = CreateCell(tree, parent, path, name, attribute);
  }
  // Down again, one component at a time.
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
  // The keys stay as they are: a subtree taken out of the hash table cannot be looked up by its old key any
  // more, so there is nothing that could be given the new one.
  return StoreOk;
}

}  // namespace catalogcore
