#include "api/internal_calls.h"

#include "api/find.h"
#include "api/idx_item.h"
#include "base/string_conversion.h"

namespace catalogcore {

namespace {

IDXSTATUS Found(const CIDXCell* cell, IDXITEM& item) {
  if (!cell) return IDXERR_NOINDEX;
  if (GetIDXOperation(&item, IDXOP_GETINFO)) {
    SetIDXName(&item, cell->info->name);
    SetIDXPath(&item, cell->info->key);
    SetIDXAttribute(&item, cell->info->attribute);
  }
  return IDX_OK;
}

CIDXCell* FirstFolder(SearchHandle& handle, IDXITEM& item) {
  CIDXString folder;
  if (GetIDXOperation(&item, IDXOP_CONDITION)) GetIDXPath(&item, folder);  // without one, from the root
  CIDXCell* const first = idData->GetFirstCell(&handle, kFolderTree, folder, 1);
  return folder.Length() == 0 ? idData->GetNextCell(&handle, 1) : first;  // the root itself is no result
}

}  // namespace

IDXFIND IDXFindFirstPath(IDXITEM* item, IDXSTATUS* status) {
  OwnedHandle handle;
  *status = CatalogueCall(item, [&]() -> IDXSTATUS {
    const CatalogueGuard guard;
    handle = NewHandle();
    const IDXSTATUS found = Found(handle ? FirstFolder(*handle, *item) : nullptr, *item);
    // Left once more by the guard: the region takes a leave by a thread that does not hold it.
    if (found != IDX_OK) LeaveCriticalSectionAPI(idData->CriticalRegion());
    return found;
  });
  return *status == IDX_OK ? handle.release() : nullptr;
}

IDXSTATUS IDXFindNextPath(IDXFIND find, IDXITEM* item) {
  return FindNext(find, item, IDXERR_NOINDEX,
                  [](SearchHandle& handle, IDXITEM& record) { return Found(idData->GetNextCell(&handle, 1), record); });
}

int IDXFindFirstHash(int32_t bucket, IDXSTR out) {
  if (bucket < 0 || static_cast<std::uint32_t>(bucket) >= CIDXString::kBucketCount || !idData) return 0;
  const CIDXNode* first = nullptr;
  OwnedHandle find;  // open until the key is read, which is after the region was left
  {
    const CatalogueGuard guard;
    find = NewHandle();
    first = idData->FirstNodeOfBucket(static_cast<std::uint32_t>(bucket));
  }
  if (!find) return 1;  // no memory for a text either
  const CIDXString empty;
  CopyCIDXStringtoIDXSTR(out, first ? first->info->key : empty);
  return 1;
}

}  // namespace catalogcore
