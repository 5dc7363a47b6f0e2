#include <algorithm>
#include <iterator>
#include <string>

#include "api/catalogue.h"
#include "api/index_calls.h"
#include "api/index_number.h"
#include "api/store_status.h"
#include "base/string_conversion.h"

namespace catalogcore {

IDXSTATUS CreatePresetIndex(int number) {
  CIDXString path;
  CIDXString name;
  if (ConvertINTtoPath(path, number, kIndexDigits) < 0) return IDXERR_PARAM;
  if (name.CopyString(("idx" + std::to_string(number)).c_str()) < 0) return IDXERR_MEMORY;
  const CatalogueGuard guard;
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

IDXSTATUS IDXSetPresetIndexName(const IDXSTR* names, const int32_t* numbers, int32_t count) {
  if (count > 0 && (!names || !numbers)) return IDXERR_PARAM;
  return CatalogueCall(&count, [&]() -> IDXSTATUS {
    IDXSTATUS status = IDX_OK;
    // A number or a name that cannot be used leaves those of the entry before in force; the first such number leaves
    // the empty path, which names the root.
    CIDXString path;
    CIDXString name;
    for (std::int32_t i = 0; i < count; ++i) {
      ConvertINTtoPath(path, numbers[i], kIndexDigits);
      CopyIDXSTRtoCIDXString(name, names[i]);
      const CatalogueGuard guard;
      if (idData->RenameCell(kIndexTree, path, name, 1) != StoreOk) status = IDXERR_PARAM;
    }
    return status;
  });
}
