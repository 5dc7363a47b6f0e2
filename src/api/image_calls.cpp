// Adding, changing, removing and looking up images.
#include <cstring>

#include "api/catalogue.h"
#include "api/idx_item.h"
#include "api/store_status.h"
#include "base/file_path.h"

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
    const CatalogueGuard guard;
    return StoreStatus(idData->AddNode(name, index, folder, attribute));
  });
}

IDXSTATUS IDXChangeImage(IDXITEM* item) {
  return CatalogueCall(item, [item]() -> IDXSTATUS {
    CIDXString name;
    IDXSTATUS status = GetIDXName(item, name);
    if (status != IDX_OK) return status;
    if (item->index == IDX_ROOT)
      return IDXRemoveImage(item);  // whether or not the mask marks it: applications rely on it
    if ((item->mask & IDXMASK_INDEX) != 0) {
      CIDXString index;
      status = GetIDXIndex(item, index);
      if (status != IDX_OK) return status;
      std::uint32_t moved = StoreOk;
      {
        const CatalogueGuard guard;
        moved = idData->MoveNode(kIndexTree, name, index, GetIDXState(item, IDXSTATE_FORCE));
      }
      if (moved == StoreImageNotFound) return IDXAddImage(item);
      if (moved != StoreOk) return StoreStatus(moved);
    }
    unsigned char attribute = 0;
    if (GetIDXAttribute(item, &attribute) != IDX_OK) return IDX_OK;
    const CatalogueGuard guard;
    return StoreStatus(idData->ChangeAttributeNode(name, attribute));
  });
}

IDXSTATUS IDXRemoveImage(IDXITEM* item) {
  return CatalogueCall(item, [item]() -> IDXSTATUS {
    CIDXString name;
    const IDXSTATUS status = GetIDXName(item, name);
    if (status != IDX_OK) return status;
    const CatalogueGuard guard;
    return StoreStatus(idData->RemoveNode(name, GetIDXState(item, IDXSTATE_FORCE)));
  });
}

IDXSTATUS IDXSearchImage(IDXITEM* item) {
  return CatalogueCall(item, [item]() -> IDXSTATUS {
    CIDXString name;
    const IDXSTATUS status = GetIDXName(item, name);
    if (status != IDX_OK) return status;
    const CatalogueGuard guard;
    const CIDXNode* const node = idData->SearchNode(name);
    if (!node) return IDXERR_NOIMAGE;
    SetIDXIndex(item, node->cell[kIndexTree]->info->key);
    SetIDXAttribute(item, node->info->attribute);
    return IDX_OK;
  });
}
