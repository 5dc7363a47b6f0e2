#include "persist/catalogue_records.h"

#include <limits.h>

#include <string>
#include <vector>

#include "base/file_path.h"
#include "persist/existing_files.h"
#include "persist/payload.h"
#include "persist/property_file.h"
#include "store/catalogue_guard.h"

namespace catalogcore {

namespace {

// The attribute of the roots and presets. Every IDXInitialize creates these again, so they are not written. A write
// recognises them by this attribute alone, and omits every other index that has exactly this attribute too.
constexpr std::uint8_t kAllProtections = IDXATTR_NOMOVE | IDXATTR_NOREMOVE | IDXATTR_NORENAME;

constexpr int kPayloadBlockSize = 1024;

// Null if the path is not UTF-8 or memory cannot be allocated.
CFReference<CFURLRef> UrlOf(const char* path) {
  const CFReference<CFStringRef> text(CFStringCreateWithCString(nullptr, path, kCFStringEncodingUTF8));
  if (!text) return nullptr;
  return CFReference<CFURLRef>(CFURLCreateWithFileSystemPath(nullptr, text.get(), kCFURLPOSIXPathStyle, false));
}

IDXSTATUS WriteRecords(CIndexData& data, const char* path, CFStringRef key,
                       IDXSTATUS (*fill)(CIndexData&, CIDXBuffer&)) {
  const CFReference<CFURLRef> url = UrlOf(path);
  if (!url) return IDXERR_FAILED;
  CIDXBuffer payload(kPayloadBlockSize);
  const IDXSTATUS status = fill(data, payload);
  if (status != IDX_OK) return status;
  return _WriteKeyData(url.get(), key, payload) == 1 ? IDX_OK : IDXERR_FAILED;
}

// Returns for each line, in order, whether the image's file exists. Throws std::bad_alloc.
std::vector<bool> FindImageFiles(PayloadReader reader) {
  std::vector<bool> exist;
  ExistingFiles files;
  std::string path;
  for (PayloadRecord record{}; reader.NextRecord(record);) {
    path = record.last.substr(0, PATH_MAX);
    exist.push_back(path.size() < PATH_MAX && files.Has(path.c_str()));  // no file has a longer path
  }
  return exist;
}

}  // namespace

IDXSTATUS LoadPayload(const char* path, CFStringRef key, CFReference<CFDataRef>& payload) {
  const CFReference<CFURLRef> url = UrlOf(path);
  if (!url || !ReadPropertyValue(url.get(), key, payload)) return IDXERR_FAILED;
  return payload && CFDataGetLength(payload.get()) > 0 ? IDX_OK : IDXERR_NODATA;
}

IDXSTATUS LoadIndexRecords(CIndexData& data, const char* path) {
  CFReference<CFDataRef> payload;
  const IDXSTATUS status = LoadPayload(path, CATALOGCORE_INDEX_KEY, payload);
  if (status != IDX_OK) return status;
  PayloadReader reader(TextOf(payload.get()));
  const std::string_view version = reader.VersionLine();
  if (version.empty()) return IDXERR_EMPTY;
  if (!IsValidVersion(version)) return IDXERR_VERSION;
  const CatalogueGuard guard(data);
  CIDXString key;
  CIDXString name;
  for (PayloadRecord record{}; reader.NextRecord(record);) {
    if (!CopyField(key, record.first) || !CopyField(name, record.last)) return IDXERR_MEMORY;
    data.AddCell(kIndexTree, key, name, record.attribute);
  }
  return IDX_OK;
}

IDXSTATUS LoadImageRecords(CIndexData& data, const char* path) {
  CFReference<CFDataRef> payload;
  const IDXSTATUS status = LoadPayload(path, CATALOGCORE_IMAGE_KEY, payload);
  if (status != IDX_OK) return status;
  PayloadReader reader(TextOf(payload.get()));
  if (!IsValidVersion(reader.VersionLine())) return IDXERR_VERSION;
  const std::vector<bool> exist = FindImageFiles(reader);  // without the lock: a disk may be slow to answer
  const CatalogueGuard guard(data);
  CIDXString indexKey;
  CIDXString imageKey;
  CIDXString folderKey;
  PayloadRecord record{};
  for (const bool exists : exist) {
    reader.NextRecord(record);
    if (!exists) continue;
    if (!CopyField(indexKey, record.first) || !CopyField(imageKey, record.last)) return IDXERR_MEMORY;
    if (!ExtractFilePath(folderKey, imageKey)) continue;
    data.AddNode(imageKey, indexKey, folderKey, record.attribute);
  }
  return IDX_OK;
}

IDXSTATUS GetIndexData(CIndexData& data, CIDXBuffer& payload) {
  if (!SetVersion(payload)) return IDXERR_MEMORY;
  const CatalogueGuard guard(data);
  SearchHandle handle{};
  CIDXString everything;
  if (!data.GetFirstCell(&handle, kIndexTree, everything, 1)) return IDX_OK;
  while (const CIDXCell* const cell = data.GetNextCell(&handle, 1)) {
    const CIDXCellInfo& info = *cell->info;
    if (info.attribute == kAllProtections) continue;
    if (!AppendRecord(payload, info.key.Text(), info.attribute, info.name.Text())) return IDXERR_MEMORY;
  }
  return IDX_OK;
}

IDXSTATUS GetImageData(CIndexData& data, CIDXBuffer& payload) {
  if (!SetVersion(payload)) return IDXERR_MEMORY;
  const CatalogueGuard guard(data);
  SearchHandle handle{};
  CIDXString everyIndex;
  CIDXString everyFolder;
  for (const CIDXNode* node = data.GetFirstNode(&handle, everyIndex, everyFolder, 1); node;
       node = data.GetNextNode(&handle, 1)) {
    const char* const indexKey = node->cell[kIndexTree]->info->key.Text();
    if (!AppendRecord(payload, indexKey, node->info->attribute, node->info->key.Text())) return IDXERR_MEMORY;
  }
  return IDX_OK;
}

IDXSTATUS WriteIndexRecords(CIndexData& data, const char* path) {
  return WriteRecords(data, path, CATALOGCORE_INDEX_KEY, GetIndexData);
}

IDXSTATUS WriteImageRecords(CIndexData& data, const char* path) {
  return WriteRecords(data, path, CATALOGCORE_IMAGE_KEY, GetImageData);
}

}  // namespace catalogcore
