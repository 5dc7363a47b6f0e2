// The state of the library, and the frame of every exported call.
//
// Threads: every call holds the catalogue's lock (CatalogueGuard) while it reads or changes the catalogue, and writes
// its record before it releases the lock. An exported call does not call another one while it holds the lock.
// IDXInitialize, IDXUninitialize, IDXSetFilePath and IDXCloseFind do not lock.
#ifndef CATALOGCORE_API_CATALOGUE_H_
#define CATALOGCORE_API_CATALOGUE_H_

#include <cstdint>

#include "base/critical_region.h"
#include "base/idx_string.h"
#include "catalogcore.h"
#include "store/catalogue_guard.h"
#include "store/index_data.h"

namespace catalogcore {

class CDetectScene;

// Both are null unless the library is initialised.
extern CIndexData* idData;
extern CDetectScene* dsScene;

// The base directory of the catalogue files, with a "/" at its end; empty until it is set.
extern CIDXString g_strFilePath;

// Sets `path` to the base directory followed by `name`, which is not null. If the name cannot be converted, `path` is
// the directory, which is not a catalogue file. IDX_OK or IDXERR_MEMORY.
IDXSTATUS GetCatalogueFilePath(IDXSTR name, CIDXString& path);

inline constexpr int kStoreCodeBase = 0x1000;

// Returns IDX_OK for the code 0. With the base kStoreCodeBase, returns the status for a StoreResult, and IDXERR_FAILED
// for an unknown code. With any other base, returns the sum of code and base.
IDXSTATUS ConvertErrorCode(int code, int base);

inline IDXSTATUS StoreStatus(std::uint32_t code) { return ConvertErrorCode(static_cast<int>(code), kStoreCodeBase); }

// Runs `call` and returns its status; exceptions become statuses. Returns IDXERR_PARAM if `required` (a record or
// another argument) is null, and IDXERR_FAILED if there is no catalogue.
template <typename Call>
IDXSTATUS CatalogueCall(const void* required, Call call) noexcept {
  if (!required) return IDXERR_PARAM;
  if (!idData) return IDXERR_FAILED;
  return WithoutExceptions(call);
}

}  // namespace catalogcore

#endif  // CATALOGCORE_API_CATALOGUE_H_
