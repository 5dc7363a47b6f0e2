// The file of the indexes: key, attribute and name of each.
#include "api/catalogue.h"
#include "persist/catalogue_records.h"
#include "persist/payload.h"

namespace catalogcore {

namespace {

// Roots and presets carry it, which every start makes anew; so an index with all three protections is not saved.
constexpr std::uint8_t kAllProtections = IDXATTR_NOMOVE | IDXATTR_NOREMOVE | IDXATTR_NORENAME;

}  // namespace

IDXSTATUS GetIndexData(CIDXBuffer& payload) {
  if (!idData) return IDXERR_FAILED;
  if (!SetVersion(payload)) return IDXERR_MEMORY;
  const CatalogueGuard guard;
  SearchHandle handle{};
  CIDXString everything;
  if (!idData->GetFirstCell(&handle, kIndexTree, everything, 1)) return IDX_OK;
  while (const CIDXCell* const cell = idData->GetNextCell(&handle, 1)) {
    const CIDXCellInfo& info = *cell->info;
    if (info.attribute == kAllProtections) continue;
    if (!AppendRecord(payload, info.key.Text(), info.attribute, info.name.Text())) return IDXERR_MEMORY;
  }
  return IDX_OK;
}

}  // namespace catalogcore

using namespace catalogcore;

IDXSTATUS IDXLoadIndexFile(IDXSTR name) {
  return CatalogueCall(name, [name]() -> IDXSTATUS {
    CFReference<CFDataRef> payload;
    const IDXSTATUS status = LoadPayload(name, CATALOGCORE_INDEX_KEY, payload);
    if (status != IDX_OK) return status;
    PayloadReader reader(TextOf(payload.get()));
    const std::string_view version = reader.VersionLine();
    if (version.empty()) return IDXERR_EMPTY;
    if (!IsValidVersion(version)) return IDXERR_VERSION;
    const CatalogueGuard guard;
    CIDXString key;
    CIDXString display;
    for (PayloadRecord record{}; reader.NextRecord(record);) {
      if (!CopyField(key, record.first) || !CopyField(display, record.last)) return IDXERR_MEMORY;
      idData->AddCell(kIndexTree, key, display, record.attribute);  // what the store refuses is skipped
    }
    return IDX_OK;
  });
}

IDXSTATUS IDXWriteIndexFile(IDXSTR name) {
  return CatalogueCall(name, [name] { return WriteCatalogueFile(name, CATALOGCORE_INDEX_KEY, GetIndexData); });
}
