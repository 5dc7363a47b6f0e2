#include "api/internal_calls.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "api/find.h"
#include "api/idx_item.h"
#include "base/string_conversion.h"
#include "persist/catalogue_records.h"
#include "persist/property_file.h"

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
  if (GetIDXOperation(&item, IDXOP_CONDITION)) GetIDXPath(&item, folder);  // without a condition from the root
  CIDXCell* const first = idData->GetFirstCell(&handle, kFolderTree, folder, 1);
  return folder.Length() == 0 ? idData->GetNextCell(&handle, 1) : first;  // the root itself is not a result
}

IDXSTATUS LoadBuffer(IDXSTR name, CFStringRef key, char*& buffer) {
  if (!name) return IDXERR_PARAM;
  CIDXString path;
  CFReference<CFDataRef> payload;
  IDXSTATUS status = GetCatalogueFilePath(name, path);
  if (status == IDX_OK) status = LoadPayload(path.Text(), key, payload);
  if (status != IDX_OK) return status;
  const std::string_view text = TextOf(payload.get());
  buffer = static_cast<char*>(std::malloc(text.size() + 1));
  if (!buffer) return IDXERR_MEMORY;
  std::memcpy(buffer, text.data(), text.size());
  buffer[text.size()] = 0;
  return IDX_OK;
}

char* LoadBuffer(IDXSTR name, CFStringRef key, std::int32_t* status) {
  char* payload = nullptr;
  const IDXSTATUS result = LoadBuffer(name, key, payload);
  if (status) *status = static_cast<std::int32_t>(result);
  return payload;
}

}  // namespace

IDXFIND IDXFindFirstPath(IDXITEM* item, IDXSTATUS* status) {
  OwnedHandle handle;
  *status = CatalogueCall(item, [&]() -> IDXSTATUS {
    const CatalogueGuard guard(*idData);
    handle = NewHandle();
    const IDXSTATUS found = Found(handle ? FirstFolder(*handle, *item) : nullptr, *item);
    // The guard leaves the region once more. A leave by a thread that does not hold it changes nothing.
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
  OwnedHandle find;  // open until the key is read, after the region is left
  {
    const CatalogueGuard guard(*idData);
    find = NewHandle();
    first = idData->FirstNodeOfBucket(static_cast<std::uint32_t>(bucket));
  }
  if (!find) return 1;  // the handle could not be allocated
  const CIDXString empty;
  CopyCIDXStringtoIDXSTR(out, first ? first->info->key : empty);
  return 1;
}

int NormFilePathKey(CIDXString& key) {
  if (key.Length() >= 2 && key[0] == '/' && key[1] == '/') {
    key[0] = 's';
    key[1] = ':';
  }
  return 1;
}

char* LoadIndexBuffer(IDXSTR name, std::int32_t* status) { return LoadBuffer(name, CATALOGCORE_INDEX_KEY, status); }

char* LoadImageBuffer(IDXSTR name, std::int32_t* status) { return LoadBuffer(name, CATALOGCORE_IMAGE_KEY, status); }

int _ReadKeyData(CFURLRef url, CFStringRef key, void* block, std::int32_t* size) {
  if (!size) return 0;
  const std::int32_t room = *size;
  *size = 0;
  CFReference<CFDataRef> value;
  if (!ReadPropertyValue(url, key, value)) return 0;
  if (!value) return 1;
  CFIndex count = std::min<CFIndex>(CFDataGetLength(value.get()), INT_MAX);
  if (block) {
    count = std::min<CFIndex>(count, std::max(room, 0));
    if (count > 0) std::memcpy(block, CFDataGetBytePtr(value.get()), static_cast<std::size_t>(count));
  }
  *size = static_cast<std::int32_t>(count);
  return 1;
}

}  // namespace catalogcore
