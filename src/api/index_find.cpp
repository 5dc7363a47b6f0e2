// Walking indexes.
#include "api/find.h"
#include "api/idx_item.h"

namespace catalogcore {

namespace {

IDXSTATUS Found(const CIDXCell* cell, IDXITEM& item) {
  if (!cell) return IDXERR_NOINDEX;
  if (GetIDXOperation(&item, IDXOP_GETINFO)) {
    SetIDXName(&item, cell->info->name);
    SetIDXIndex(&item, cell->info->key);
    SetIDXAttribute(&item, cell->info->attribute);
  }
  return IDX_OK;
}

}  // namespace

}  // namespace catalogcore

using namespace catalogcore;

IDXFIND IDXFindFirstIndex(IDXITEM* item, IDXSTATUS* status) {
  return FindFirst(item, status, [](SearchHandle& handle, IDXITEM& record) -> IDXSTATUS {
    CIDXString key;
    if (GetIDXOperation(&record, IDXOP_CONDITION)) {
      const IDXSTATUS read = GetIDXIndex(&record, key);
      if (read != IDX_OK) return read;
    }
    const CIDXCell* cell = idData->GetFirstCell(&handle, kIndexTree, key, 1);
    // Without a condition the walk begins at the root, which is no result.
    if (key.Length() == 0) cell = idData->GetNextCell(&handle, 1);
    return Found(cell, record);
  });
}

IDXSTATUS IDXFindNextIndex(IDXFIND find, IDXITEM* item) {
  return FindNext(find, item, IDXERR_NOINDEX,
                  [](SearchHandle& handle, IDXITEM& record) { return Found(idData->GetNextCell(&handle, 1), record); });
}
