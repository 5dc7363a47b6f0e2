// Walking images.
#include "api/find.h"
#include "api/idx_item.h"

namespace catalogcore {

namespace {

IDXSTATUS Found(const CIDXNode* node, IDXITEM& item) {
  if (!node) return IDXERR_NOIMAGE;
  if (GetIDXOperation(&item, IDXOP_GETINFO)) {
    SetIDXName(&item, node->info->key);
    SetIDXIndex(&item, node->cell[kIndexTree]->info->key);
    SetIDXAttribute(&item, node->info->attribute);
  }
  return IDX_OK;
}

// The keys that restrict the walk: "." for a field that is not marked.
IDXSTATUS ReadCondition(const IDXITEM& item, CIDXString& folder, CIDXString& index) {
  const auto read = [&item](std::uint32_t field, CIDXString& key, auto get) -> IDXSTATUS {
    if ((item.mask & field) != 0) return get(&item, key);
    return key.CopyString(".") < 0 ? IDXERR_MEMORY : IDX_OK;
  };
  const IDXSTATUS status = read(IDXMASK_PATH, folder, GetIDXPath);
  return status == IDX_OK ? read(IDXMASK_INDEX, index, GetIDXIndex) : status;
}

}  // namespace

}  // namespace catalogcore

using namespace catalogcore;

IDXFIND IDXFindFirstImage(IDXITEM* item, IDXSTATUS* status) {
  return FindFirst(item, status, [](SearchHandle& handle, IDXITEM& record) -> IDXSTATUS {
    CIDXString folder;
    CIDXString index;
    if (GetIDXOperation(&record, IDXOP_CONDITION)) {
      const IDXSTATUS read = ReadCondition(record, folder, index);
      if (read != IDX_OK) return read;
    }
    return Found(idData->GetFirstNode(&handle, index, folder, 1), record);
  });
}

IDXSTATUS IDXFindNextImage(IDXFIND find, IDXITEM* item) {
  return FindNext(find, item, IDXERR_NOIMAGE,
                  [](SearchHandle& handle, IDXITEM& record) { return Found(idData->GetNextNode(&handle, 1), record); });
}

IDXSTATUS IDXCloseFind(IDXFIND find) {
  if (find && idData) idData->Finds().Close(*find);
  std::free(find);
  return IDX_OK;
}
