// The state of the library, and the frame of every exported call.
//
// Threads: every call takes the catalogue's lock (CatalogueGuard) for as long as it reads or changes the catalogue, and
// fills its record before it leaves the lock. A call that holds the lock enters no other call. IDXInitialize,
// IDXUninitialize, IDXSetFilePath and IDXCloseFind take no lock.
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

// Sets `path` to the base directory followed by `name`, which is not null. A name that cannot be converted leaves the
// directory alone, which names no catalogue file. IDX_OK or IDXERR_MEMORY.
IDXSTATUS GetCatalogueFilePath(IDXSTR name, CIDXString& path);

inline constexpr int kStoreCodeBase = 0x1000;

// IDX_OK for 0. With kStoreCodeBase the status of the store's result code, or IDXERR_FAILED for an unknown code. With
// any other base the sum of both.
IDXSTATUS ConvertErrorCode(int code, int base);

inline IDXSTATUS StoreStatus(std::uint32_t code) { return ConvertErrorCode(static_cast<int>(code), kStoreCodeBase); }

// Runs `call`. IDXERR_PARAM when `required` (a record, a handle or another argument) is null; IDXERR_FAILED before
// IDXInitialize. Exceptions become statuses.
template <typename Call>
IDXSTATUS CatalogueCall(const void* required, Call call) noexcept {
  if (!required) return IDXERR_PARAM;
  if (!idData) return IDXERR_FAILED;
  return WithoutExceptions(call);
}

}  // namespace catalogcore

#endif  // CATALOGCORE_API_CATALOGUE_H_
