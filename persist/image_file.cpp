// The file of the images: index key, attribute and path of each.
#include <limits.h>

#include "api/catalogue.h"
#include "api/file_path.h"
#include "base/region_guard.h"
#include "persist/catalogue_file.h"
#include "persist/existing_files.h"
#include "persist/payload.h"

IDXSTATUS GetImageData(CIDXBuffer& payload) {
  if (!idData) return IDXERR_FAILED;
  if (!SetVersion(payload)) return IDXERR_MEMORY;
  const RegionGuard region(idData->CriticalRegion());
  SearchHandle handle{};
  CIDXString everyIndex;
  CIDXString everyFolder;
  for (const CIDXNode* node = idData->GetFirstNode(&handle, everyIndex, everyFolder, 1); node;
       node = idData->GetNextNode(&handle, 1)) {
    const char* const indexKey = node->cell[kIndexTree]->info->key.Text();
    if (!AppendRecord(payload, indexKey, node->info->attribute, node->info->key.Text())) return IDXERR_MEMORY;
  }
  return IDX_OK;
}

IDXSTATUS IDXLoadImageFile(IDXSTR name) {
  return CatalogueCall(name, [name]() -> IDXSTATUS {
    CFReference<CFDataRef> payload;
    const IDXSTATUS status = LoadPayload(name, CATALOGCORE_IMAGE_KEY, payload);
    if (status != IDX_OK) return status;
    PayloadReader reader(TextOf(payload.get()));
    if (!IsValidVersion(reader.VersionLine())) return IDXERR_VERSION;
    const RegionGuard region(idData->CriticalRegion());
    ExistingFiles existing;
    CIDXString indexKey;
    CIDXString imageKey;
    CIDXString folderKey;
    for (PayloadRecord record{}; reader.NextRecord(record);) {
      if (record.last.size() >= PATH_MAX) continue;  // names no file
      if (!CopyField(imageKey, record.last)) return IDXERR_MEMORY;
      if (!existing.Has(imageKey.Text())) continue;
      if (!CopyField(indexKey, record.first)) return IDXERR_MEMORY;
      const int extracted = ExtractFilePath(folderKey, imageKey);
      if (extracted == 0) continue;
      if (extracted < 0) return IDXERR_MEMORY;
      // What the store refuses is skipped.
      if (idData->AddNode(imageKey, indexKey, folderKey, record.attribute) == StoreFailed) return IDXERR_MEMORY;
    }
    return IDX_OK;
  });
}

IDXSTATUS IDXWriteImageFile(IDXSTR name) {
  return CatalogueCall(name, [name] { return WriteCatalogueFile(name, CATALOGCORE_IMAGE_KEY, GetImageData); });
}
