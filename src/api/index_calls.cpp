// Adding, changing, removing and finding indexes, and the preset indexes.
#include "api/index_calls.h"

#include <algorithm>
#include <bitset>
#include <cstring>
#include <iterator>
#include <string>

#include "api/catalogue.h"
#include "api/find.h"
#include "api/idx_item.h"
#include "api/index_number.h"
#include "base/string_conversion.h"

namespace catalogcore {

namespace {

// The groups of added indexes. Presets have smaller ones.
constexpr int kFirstAddedGroup = 10;
constexpr int kLastAddedGroup = 29;

struct Siblings {
  std::bitset<kLastAddedGroup + 1> usedGroups;
  const CIDXCell* sameName = nullptr;  // the first child with the new name, by bytes
};

Siblings ScanChildren(const CIDXCell* parent, const CIDXString& name) {
  Siblings siblings;
  for (const CIDXCell* child = parent->firstChild; child && !siblings.sameName; child = child->nextSibling) {
    const int group = GetLastIndexTag(child->info->key.Text());
    if (group >= kFirstAddedGroup && group <= kLastAddedGroup) siblings.usedGroups.set(static_cast<std::size_t>(group));
    if (std::strcmp(child->info->name.Text(), name.Text()) == 0) siblings.sameName = child;
  }
  return siblings;
}

IDXSTATUS AddUnder(IDXITEM* item, const CIDXString& parentKey, const CIDXString& name, unsigned char attribute) {
  const CIDXCell* const parent = idData->SearchCell(kIndexTree, parentKey);
  if (!parent) return IDXERR_NOINDEX;
  const bool wantsNumber = GetIDXOperation(item, IDXOP_GETINFO) != 0;
  const Siblings siblings = ScanChildren(parent, name);
  if (siblings.sameName) {
    if (wantsNumber) SetIDXIndex(item, siblings.sameName->info->key);
    return IDXERR_INDEXEXISTS;
  }
  int group = kFirstAddedGroup;
  while (group <= kLastAddedGroup && siblings.usedGroups.test(static_cast<std::size_t>(group))) ++group;
  if (group > kLastAddedGroup) return IDXERR_INDEXFULL;

  const bool isTopLevel = std::strcmp(parentKey.Text(), ".") == 0;
  CIDXString key;
  const std::string path = (isTopLevel ? std::string() : std::string(parentKey.Text()) + '/') + std::to_string(group);
  if (key.CopyString(path.c_str()) < 0) return IDXERR_MEMORY;
  int number = 0;
  ConvertPathtoINT(number, key, kIndexLevels, kIndexDigits);
  // Below the fourth level numbers are out of range, or wrap into it again.
  if (key.Count('/') >= kIndexLevels || !IsIndexNumber(number)) return IDXERR_PARAM;
  const std::uint32_t result = idData->AddCell(kIndexTree, key, name, attribute);
  if (wantsNumber) SetIDXIndex(item, key);
  return StoreStatus(result);
}

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

IDXSTATUS CreatePresetIndex(int number) {
  CIDXString path;
  CIDXString name;
  if (ConvertINTtoPath(path, number, kIndexDigits) < 0) return IDXERR_PARAM;
  if (name.CopyString(("idx" + std::to_string(number)).c_str()) < 0) return IDXERR_MEMORY;
  const CatalogueGuard guard(*idData);
  return StoreStatus(idData->AddCell(kIndexTree, path, name, IDXATTR_NOMOVE | IDXATTR_NOREMOVE | IDXATTR_NORENAME));
}

int MakePresetIndex() {
  return std::all_of(std::begin(kaPresetIndex), std::end(kaPresetIndex),
                     [](std::int32_t number) { return CreatePresetIndex(number) == IDX_OK; })
             ? 1
             : 0;
}

}  // namespace catalogcore

using namespace catalogcore;

IDXSTATUS IDXAddIndex(IDXITEM* item) {
  return CatalogueCall(item, [item]() -> IDXSTATUS {
    CIDXString parentKey;
    CIDXString name;
    IDXSTATUS status = GetIDXIndex(item, parentKey);
    if (status != IDX_OK) return status;
    status = GetIDXName(item, name);
    if (status != IDX_OK) return status;
    unsigned char attribute = 0;
    GetIDXAttribute(item, &attribute);
    // Held to the end, so that no other call takes the chosen group.
    const CatalogueGuard guard(*idData);
    return AddUnder(item, parentKey, name, attribute);
  });
}

IDXSTATUS IDXChangeIndex(IDXITEM* item) {
  return CatalogueCall(item, [item]() -> IDXSTATUS {
    CIDXString key;
    IDXSTATUS status = GetIDXIndex(item, key);
    if (status != IDX_OK) return status;
    std::uint32_t result = StoreOk;
    if ((item->mask & IDXMASK_NAME) != 0) {
      CIDXString name;
      status = GetIDXName(item, name);
      if (status != IDX_OK) return status;
      const CatalogueGuard guard(*idData);
      result = idData->RenameCell(kIndexTree, key, name, GetIDXState(item, IDXSTATE_FORCE));
    }
    unsigned char attribute = 0;
    if (GetIDXAttribute(item, &attribute) == IDX_OK) {
      // This result replaces that of the rename, on purpose.
      const CatalogueGuard guard(*idData);
      result = idData->ChangeAttributeCell(kIndexTree, key, attribute);
    }
    return StoreStatus(result);
  });
}

IDXSTATUS IDXRemoveIndex(IDXITEM* item) {
  return CatalogueCall(item, [item]() -> IDXSTATUS {
    CIDXString key;
    const IDXSTATUS status = GetIDXIndex(item, key);
    if (status != IDX_OK) return status;
    const CatalogueGuard guard(*idData);
    return StoreStatus(idData->RemoveCell(kIndexTree, key, GetIDXState(item, IDXSTATE_FORCE)));
  });
}

IDXSTATUS IDXSearchIndex(IDXITEM* item) {
  return CatalogueCall(item, [item]() -> IDXSTATUS {
    CIDXString key;
    const IDXSTATUS status = GetIDXIndex(item, key);
    if (status != IDX_OK) return status;
    const CatalogueGuard guard(*idData);
    const CIDXCell* const cell = idData->SearchCell(kIndexTree, key);
    if (!cell) return IDXERR_NOINDEX;
    SetIDXName(item, cell->info->name);
    SetIDXAttribute(item, cell->info->attribute);
    return IDX_OK;
  });
}

IDXFIND IDXFindFirstIndex(IDXITEM* item, IDXSTATUS* status) {
  return FindFirst(item, status, [](SearchHandle& handle, IDXITEM& record) -> IDXSTATUS {
    CIDXString key;
    if (GetIDXOperation(&record, IDXOP_CONDITION)) {
      const IDXSTATUS read = GetIDXIndex(&record, key);
      if (read != IDX_OK) return read;
    }
    const CIDXCell* cell = idData->GetFirstCell(&handle, kIndexTree, key, 1);
    // Without a condition the walk begins at the root, which is not a result.
    if (key.Length() == 0) cell = idData->GetNextCell(&handle, 1);
    return Found(cell, record);
  });
}

IDXSTATUS IDXFindNextIndex(IDXFIND find, IDXITEM* item) {
  return FindNext(find, item, IDXERR_NOINDEX,
                  [](SearchHandle& handle, IDXITEM& record) { return Found(idData->GetNextCell(&handle, 1), record); });
}

IDXSTATUS IDXSetPresetIndexName(const IDXSTR* names, const int32_t* numbers, int32_t count) {
  if (count > 0 && (!names || !numbers)) return IDXERR_PARAM;
  return CatalogueCall(&count, [&]() -> IDXSTATUS {
    IDXSTATUS status = IDX_OK;
    // An invalid number or name leaves the path or name of the entry before in use, on purpose. In the first entry an
    // invalid number leaves the empty path, which names the root.
    CIDXString path;
    CIDXString name;
    for (std::int32_t i = 0; i < count; ++i) {
      ConvertINTtoPath(path, numbers[i], kIndexDigits);
      CopyIDXSTRtoCIDXString(name, names[i]);
      const CatalogueGuard guard(*idData);
      if (idData->RenameCell(kIndexTree, path, name, 1) != StoreOk) status = IDXERR_PARAM;
    }
    return status;
  });
}
