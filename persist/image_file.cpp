// The file of the images: index key, attribute and path of each.
#include <limits.h>

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

#include "api/catalogue.h"
#include "api/file_path.h"
#include "persist/catalogue_file.h"
#include "persist/existing_files.h"
#include "persist/payload.h"

namespace {

// The records of the images whose files exist, a few hundred at a time: asking the system for one file and filing one
// image in turn, each would push out of the processor's caches what the other needs.
class ExistingImages {
 public:
  explicit ExistingImages(PayloadReader& reader) : reader_(reader) {}

  // The next ones, good until the next call; none at the end. Throws std::bad_alloc.
  std::span<const PayloadRecord> Next() {
    std::size_t count = 0;
    while (count < records_.size() && reader_.NextRecord(records_[count])) {
      const std::string_view path = records_[count].last;
      if (path.size() >= PATH_MAX) continue;  // names no file
      path_ = path;
      if (files_.Has(path_.c_str())) ++count;
    }
    return std::span(records_).first(count);
  }

 private:
  PayloadReader& reader_;
  ExistingFiles files_;
  std::string path_;
  std::array<PayloadRecord, 256> records_{};
};

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

IDXSTATUS IDXLoadImageFile(IDXSTR name) {
  return CatalogueCall(name, [name]() -> IDXSTATUS {
    CFReference<CFDataRef> payload;
    const IDXSTATUS status = LoadPayload(name, CATALOGCORE_IMAGE_KEY, payload);
    if (status != IDX_OK) return status;
    PayloadReader reader(TextOf(payload.get()));
    if (!IsValidVersion(reader.VersionLine())) return IDXERR_VERSION;
    const CatalogueGuard guard;
    ExistingImages images(reader);
    CIDXString indexKey;
    CIDXString imageKey;
    CIDXString folderKey;
    for (auto records = images.Next(); !records.empty(); records = images.Next()) {
      for (const PayloadRecord& record : records) {
        if (!CopyField(indexKey, record.first) || !CopyField(imageKey, record.last)) return IDXERR_MEMORY;
        if (!ExtractFilePath(folderKey, imageKey)) continue;
        idData->AddNode(imageKey, indexKey, folderKey, record.attribute);  // what the store refuses is skipped
      }
    }
    return IDX_OK;
  });
}

IDXSTATUS IDXWriteImageFile(IDXSTR name) {
  return CatalogueCall(name, [name] { return WriteCatalogueFile(name, CATALOGCORE_IMAGE_KEY, GetImageData); });
}
