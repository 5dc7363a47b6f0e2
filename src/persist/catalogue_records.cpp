// The file of the images: index key, attribute and path of each.
#include "persist/catalogue_records.h"

#include <limits.h>

#include <string>
#include <vector>

#include "api/catalogue.h"
#include "base/file_path.h"
#include "persist/existing_files.h"
#include "persist/payload.h"

namespace catalogcore {

namespace {

// Whether the file of each record exists, in the order of the records, a bit each. A disk may take its time to answer,
// so this is asked before the catalogue's lock is taken. Throws std::bad_alloc.
std::vector<bool> AskForFiles(PayloadReader reader) {
  std::vector<bool> exist;
  ExistingFiles files;
  std::string path;
  for (PayloadRecord record{}; reader.NextRecord(record);) {
    path = record.last.substr(0, PATH_MAX);
    exist.push_back(path.size() < PATH_MAX && files.Has(path.c_str()));  // a longer path names no file
  }
  return exist;
}

}  // namespace

IDXSTATUS GetImageData(CIDXBuffer& payload) {
  if (!idData) return IDXERR_FAILED;
  if (!SetVersion(payload)) return IDXERR_MEMORY;
  const CatalogueGuard guard;
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

}  // namespace catalogcore

using namespace catalogcore;

IDXSTATUS IDXLoadImageFile(IDXSTR name) {
  return CatalogueCall(name, [name]() -> IDXSTATUS {
    CFReference<CFDataRef> payload;
    const IDXSTATUS status = LoadPayload(name, CATALOGCORE_IMAGE_KEY, payload);
    if (status != IDX_OK) return status;
    PayloadReader reader(TextOf(payload.get()));
    if (!IsValidVersion(reader.VersionLine())) return IDXERR_VERSION;
    const std::vector<bool> exist = AskForFiles(reader);
    const CatalogueGuard guard;
    CIDXString indexKey;
    CIDXString imageKey;
    CIDXString folderKey;
    PayloadRecord record{};
    for (const bool exists : exist) {
      reader.NextRecord(record);
      if (!exists) continue;
      if (!CopyField(indexKey, record.first) || !CopyField(imageKey, record.last)) return IDXERR_MEMORY;
      if (!ExtractFilePath(folderKey, imageKey)) continue;
      idData->AddNode(imageKey, indexKey, folderKey, record.attribute);  // what the store refuses is skipped
    }
    return IDX_OK;
  });
}

IDXSTATUS IDXWriteImageFile(IDXSTR name) {
  return CatalogueCall(name, [name] { return WriteCatalogueFile(name, CATALOGCORE_IMAGE_KEY, GetImageData); });
}
