// The file of the indexes: key, attribute and name of each.
#include "api/catalogue.h"
#include "base/heap_block.h"
#include "base/region_guard.h"
#include "persist/catalogue_file.h"
#include "persist/payload.h"

namespace {

// Roots and presets carry it, which every start makes anew; so an index with all three protections is not saved.
constexpr std::uint8_t kAllProtections = IDXATTR_NOMOVE | IDXATTR_NOREMOVE | IDXATTR_NORENAME;

}  // namespace

IDXSTATUS GetIndexData(CIDXBuffer& payload) {
  if (!idData) return IDXERR_FAILED;
  if (!SetVersion(payload)) return IDXERR_MEMORY;
  const RegionGuard region(idData->CriticalRegion());
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

IDXSTATUS IDXLoadIndexFile(IDXSTR name) {
  return CatalogueCall(name, [name]() -> IDXSTATUS {
    std::int32_t status = IDX_OK;
    const HeapBlock<char> payload(LoadIndexBuffer(name, &status));
    if (status != IDX_OK) return static_cast<IDXSTATUS>(status);
    PayloadReader reader(payload.get());
    const char* const version = reader.VersionLine();
    if (!version) return IDXERR_EMPTY;
    if (!IsValidVersion(version)) return IDXERR_VERSION;
    const RegionGuard region(idData->CriticalRegion());
    CIDXString key;
    CIDXString display;
    for (PayloadRecord record{}; reader.NextRecord(record);) {
      if (key.CopyString(record.first) < 0 || display.CopyString(record.last) < 0) return IDXERR_MEMORY;
      idData->AddCell(kIndexTree, key, display, record.attribute);  // what the store refuses is skipped
    }
    return IDX_OK;
  });
}

IDXSTATUS IDXWriteIndexFile(IDXSTR name) {
  return CatalogueCall(name, [name] { return WriteCatalogueFile(name, CATALOGCORE_INDEX_KEY, GetIndexData); });
}
