// Adding, changing, removing and looking up indexes.
#include <bitset>
#include <cstring>
#include <string>

#include "api/catalogue.h"
#include "api/idx_item.h"
#include "api/index_number.h"
#include "api/store_status.h"

namespace catalogcore {

namespace {

// The groups that added indexes get; smaller ones are the presets'.
constexpr int kFirstAddedGroup = 10;
constexpr int kLastAddedGroup = 29;

// What the children of an index leave to choose from.
struct Siblings {
  std::bitset<kLastAddedGroup + 1> usedGroups;
  const CIDXCell* sameName = nullptr;  // the first child of this very name
};

Siblings LookAtChildren(const CIDXCell* parent, const CIDXString& name) {
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
  const Siblings siblings = LookAtChildren(parent, name);
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
  // Below the fourth level numbers leave the range, or wrap into it again.
  if (key.Count('/') >= kIndexLevels || !IsIndexNumber(number)) return IDXERR_PARAM;
  const std::uint32_t result = idData->AddCell(kIndexTree, key, name, attribute);
  if (wantsNumber) SetIDXIndex(item, key);
  return StoreStatus(result);
}

}  // namespace

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
    // To the end: no other call may take the group that is chosen.
    const CatalogueGuard guard;
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
      const CatalogueGuard guard;
      result = idData->RenameCell(kIndexTree, key, name, GetIDXState(item, IDXSTATE_FORCE));
    }
    unsigned char attribute = 0;
    if (GetIDXAttribute(item, &attribute) == IDX_OK) {
      // Its result takes the place of the renaming's on purpose.
      const CatalogueGuard guard;
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
    const CatalogueGuard guard;
    return StoreStatus(idData->RemoveCell(kIndexTree, key, GetIDXState(item, IDXSTATE_FORCE)));
  });
}

IDXSTATUS IDXSearchIndex(IDXITEM* item) {
  return CatalogueCall(item, [item]() -> IDXSTATUS {
    CIDXString key;
    const IDXSTATUS status = GetIDXIndex(item, key);
    if (status != IDX_OK) return status;
    const CatalogueGuard guard;
    const CIDXCell* const cell = idData->SearchCell(kIndexTree, key);
    if (!cell) return IDXERR_NOINDEX;
    SetIDXName(item, cell->info->name);
    SetIDXAttribute(item, cell->info->attribute);
    return IDX_OK;
  });
}
