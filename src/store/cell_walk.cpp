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

CIDXCell* CIndexData::GetNextCellSub(SearchHandle* handle, std::int32_t recursive) const {
  if (!handle->currentCell) return nullptr;
  const bool goesOn = recursive && !HasStrayed(*handle);
  handle->currentCell = goesOn ? NextInPreOrder(handle->startCell, handle->currentCell) : nullptr;
  return handle->currentCell;
}

bool CIndexData::HasStrayed(const SearchHandle& handle) const {
  return movedCells[handle.tree].head && !IsParent(handle.startCell, handle.currentCell);
}

CIDXCell* CIndexData::GetNextCell(SearchHandle* handle, std::int32_t recursive) const {
  CIDXCell* cell = GetNextCellSub(handle, recursive);
  while (cell && handle->skipVolumes == 1 && IsVolume(cell)) cell = GetNextCellSub(handle, recursive);
  return cell;
}

}  // namespace catalogcore
