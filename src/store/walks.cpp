#include "store/index_data.h"

namespace catalogcore {

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

CIDXNode* CIndexData::FirstMatchFromCurrentCell(SearchHandle* handle, std::int32_t recursive) const {
  handle->currentNode = nullptr;
  while (handle->currentCell && !handle->currentNode) {
    handle->currentNode = SearchSkipNode(kIndexTree, handle->currentCell, handle->filterCell);
    if (!handle->currentNode) GetNextCell(handle, recursive);
  }
  return handle->currentNode;
}

CIDXNode* CIndexData::GetNextNodeSub(SearchHandle* handle, std::int32_t recursive) const {
  if (!handle->currentNode) return nullptr;
  CIDXNode* node = HasStrayed(*handle) ? nullptr : handle->currentNode->next[handle->tree];
  while (node && node->info->removed) node = node->next[handle->tree];
  while (!node && GetNextCell(handle, recursive)) node = handle->currentCell->firstNode;
  handle->currentNode = node;
  return node;
}

CIDXNode* CIndexData::GetNextNode(SearchHandle* handle, std::int32_t recursive) const {
  const CIDXCell* const cellBefore = handle->currentCell;
  const CIDXNode* const node = GetNextNodeSub(handle, recursive);
  if (!node) return nullptr;
  const bool isFiltered = handle->filterCell != root[handle->filterTree];
  if (!isFiltered || IsParent(handle->filterCell, node->cell[handle->filterTree])) return handle->currentNode;
  // The images of one index and what is below it form one run in a folder's list: past its end, leave the
  // folder.
  if (handle->currentCell == cellBefore) GetNextCell(handle, recursive);
  return FirstMatchFromCurrentCell(handle, recursive);
}

}  // namespace catalogcore
