// Adding, changing, removing and finding images.
#include <cstring>

#include "api/catalogue.h"
#include "api/find.h"
#include "api/idx_item.h"
#include "base/file_path.h"

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

// Reads the keys that restrict the walk; a field that is not marked becomes ".", which restricts nothing.
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

IDXSTATUS IDXAddImage(IDXITEM* item) {
  return CatalogueCall(item, [item]() -> IDXSTATUS {
    CIDXString name;
    CIDXString folder;
    CIDXString index;
    IDXSTATUS status = GetIDXName(item, name);
    if (status != IDX_OK) return status;
    if (!ExtractFilePath(folder, name)) return std::strchr(name.Text(), '/') ? IDXERR_MEMORY : IDXERR_PARAM;
    status = GetIDXIndex(item, index);
    if (status != IDX_OK) return status;
    unsigned char attribute = 0;
    GetIDXAttribute(item, &attribute);
    const CatalogueGuard guard(*idData);
    return StoreStatus(idData->AddNode(name, index, folder, attribute));
  });
}

IDXSTATUS IDXChangeImage(IDXITEM* item) {
  return CatalogueCall(item, [item]() -> IDXSTATUS {
    CIDXString name;
    IDXSTATUS status = GetIDXName(item, name);
    if (status != IDX_OK) return status;
    if (item->index == IDX_ROOT) return IDXRemoveImage(item);  // on purpose even if `index` is not marked
    if ((item->mask & IDXMASK_INDEX) != 0) {
      CIDXString index;
      status = GetIDXIndex(item, index);
      if (status != IDX_OK) return status;
      std::uint32_t moved = StoreOk;
      {
        const CatalogueGuard guard(*idData);
        moved = idData->MoveNode(kIndexTree, name, index, GetIDXState(item, IDXSTATE_FORCE));
      }
      if (moved == StoreImageNotFound) return IDXAddImage(item);
      if (moved != StoreOk) return StoreStatus(moved);
    }
    unsigned char attribute = 0;
    if (GetIDXAttribute(item, &attribute) != IDX_OK) return IDX_OK;
    const CatalogueGuard guard(*idData);
    return StoreStatus(idData->ChangeAttributeNode(name, attribute));
  });
}

IDXSTATUS IDXRemoveImage(IDXITEM* item) {
  return CatalogueCall(item, [item]() -> IDXSTATUS {
    CIDXString name;
    const IDXSTATUS status = GetIDXName(item, name);
    if (status != IDX_OK) return status;
    const CatalogueGuard guard(*idData);
    return StoreStatus(idData->RemoveNode(name, GetIDXState(item, IDXSTATE_FORCE)));
  });
}

IDXSTATUS IDXSearchImage(IDXITEM* item) {
  return CatalogueCall(item, [item]() -> IDXSTATUS {
    CIDXString name;
    const IDXSTATUS status = GetIDXName(item, name);
    if (status != IDX_OK) return status;
    const CatalogueGuard guard(*idData);
    const CIDXNode* const node = idData->SearchNode(name);
    if (!node) return IDXERR_NOIMAGE;
    SetIDXIndex(item, node->cell[kIndexTree]->info->key);
    SetIDXAttribute(item, node->info->attribute);
    return IDX_OK;
  });
}

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
