// The library's state, and the frame around every call that an application makes.
#ifndef CATALOGCORE_API_CATALOGUE_H_
#define CATALOGCORE_API_CATALOGUE_H_

#include "base/critical_region.h"
#include "base/idx_string.h"
#include "catalogcore.h"
#include "store/index_data.h"

namespace catalogcore {

class CDetectScene;

// The catalogue; null unless the library is initialised.
extern CIndexData* idData;

// The scene detector; null unless the library is initialised.
extern CDetectScene* dsScene;

// Holds the region of the catalogue, which must be there, for as long as it lives.
class CatalogueGuard {
 public:
  CatalogueGuard() : region_(idData->CriticalRegion()) { idData->Finds().Sweep(); }

 private:
  const RegionGuard region_;
};

// The base directory of the catalogue's files, with a "/" at its end; empty until it is set.
extern CIDXString g_strFilePath;

// Runs `call` for a record (or a handle, or any other argument that must be there): IDXERR_PARAM without it,
// IDXERR_FAILED before IDXInitialize, and no exception comes out.
template <typename Call>
IDXSTATUS CatalogueCall(const void* required, Call call) noexcept {
  if (!required) return IDXERR_PARAM;
  if (!idData) return IDXERR_FAILED;
  return WithoutExceptions(call);
}

}  // namespace catalogcore

#endif  // CATALOGCORE_API_CATALOGUE_H_
