// Walks over the cells of a subtree, and over their images.
#include "store/walks.h"

#include <cstring>

#include "store/cell_order.h"
#include "store/index_data.h"

namespace catalogcore {

namespace {

bool IsVolume(const CIDXCell* cell) {
  constexpr char kVolumes[] = "/Volumes";
  return std::strncmp(cell->info->key.Text(), kVolumes, sizeof kVolumes - 1) == 0;
}

}  // namespace

CIDXCell* CIndexData::GetFirstCell(SearchHandle* handle, std::int32_t tree, CIDXString& key,
                                   std::int32_t recursive) const {
  const bool everything = tree == kFolderTree && recursive == 1 && std::strcmp(key.Text(), "/") == 0;
  handle->skipVolumes = everything ? 1 : 0;
  key.TrimRight('/');
  handle->tree = tree;
  handle->startCell = SearchCell(tree, key);
  handle->currentCell = handle->startCell;
  return handle->currentCell;
}

CIDXCell* CIndexData::GetNextCell(SearchHandle* handle, std::int32_t recursive) const {
  CIDXCell* cell = GetNextCellSub(handle, recursive);
  while (cell && handle->skipVolumes == 1 && IsVolume(cell)) cell = GetNextCellSub(handle, recursive);
  return cell;
}

CIDXCell* CIndexData::GetNextCellSub(SearchHandle* handle, std::int32_t recursive) const {
  if (!handle->currentCell) return nullptr;
  const bool goesOn = recursive && !IsOutsideSubtree(*handle);
  handle->currentCell = goesOn ? NextInPreOrder(handle->startCell, handle->currentCell) : nullptr;
  return handle->currentCell;
}

// Whether the current cell was moved out of the subtree where the walk began.
bool CIndexData::IsOutsideSubtree(const SearchHandle& handle) const {
  return movedCells[handle.tree].head && !IsParent(handle.startCell, handle.currentCell);
}

CIDXNode* CIndexData::GetFirstNode(SearchHandle* handle, CIDXString& indexKey, CIDXString& folderKey,
                                   std::int32_t recursive) const {
  handle->currentNode = nullptr;
  const bool byIndex = !folderKey.ConvertASCIIToUTF8() || NamesRoot(kFolderTree, folderKey);
  const CIDXCell* const start = byIndex ? GetFirstCell(handle, kIndexTree, indexKey, recursive)
                                        : GetFirstCell(handle, kFolderTree, folderKey, recursive);
  if (!start) return nullptr;
  handle->filterTree = kIndexTree;
  handle->filterCell = SearchCell(kIndexTree, indexKey);
  if (!handle->filterCell) return nullptr;
  return FirstMatchFromCurrentCell(handle, recursive);
}

CIDXNode* CIndexData::GetNextNode(SearchHandle* handle, std::int32_t recursive) const {
  const CIDXCell* const cellBefore = handle->currentCell;
  const CIDXNode* const node = GetNextNodeSub(handle, recursive);
  if (!node) return nullptr;
  const bool isFiltered = handle->filterCell != root[handle->filterTree];
  if (!isFiltered || IsParent(handle->filterCell, node->cell[handle->filterTree])) return handle->currentNode;
  // The images that match are adjacent in a folder's list. After the last of them, the walk leaves the folder.
  if (handle->currentCell == cellBefore) GetNextCell(handle, recursive);
  return FirstMatchFromCurrentCell(handle, recursive);
}

// The next image without regard to the filter.
CIDXNode* CIndexData::GetNextNodeSub(SearchHandle* handle, std::int32_t recursive) const {
  if (!handle->currentNode) return nullptr;
  CIDXNode* node = IsOutsideSubtree(*handle) ? nullptr : handle->currentNode->next[handle->tree];
  while (node && node->info->removed) node = node->next[handle->tree];
  while (!node && GetNextCell(handle, recursive)) node = handle->currentCell->firstNode;
  handle->currentNode = node;
  return node;
}

CIDXNode* CIndexData::FirstMatchFromCurrentCell(SearchHandle* handle, std::int32_t recursive) const {
  handle->currentNode = nullptr;
  while (handle->currentCell && !handle->currentNode) {
    handle->currentNode = SearchSkipNode(kIndexTree, handle->currentCell, handle->filterCell);
    if (!handle->currentNode) GetNextCell(handle, recursive);
  }
  return handle->currentNode;
}

}  // namespace catalogcore
