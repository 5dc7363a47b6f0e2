#include "api/store_status.h"

#include "store/entries.h"

namespace catalogcore {

IDXSTATUS ConvertErrorCode(int code, int base) {
  constexpr int kReserved = 7;
  if (code == 0) return IDX_OK;
  if (base != kStoreCodeBase) return static_cast<IDXSTATUS>(code) + static_cast<IDXSTATUS>(base);
  switch (code) {
    case StoreFailed:
      return IDXERR_MEMORY;
    case StoreImageExists:
      return IDXERR_IMAGEEXISTS;
    case StoreImageNotFound:
      return IDXERR_NOIMAGE;
    case StoreIndexExists:
      return IDXERR_INDEXEXISTS;
    case StoreIndexNotFound:
      return IDXERR_NOINDEX;
    case StoreIndexHasChildren:
    case kReserved:
      return IDXERR_NOTEMPTY;
    case StoreInvalidKey:
      return IDXERR_PARAM;
    case StoreMoveProtected:
    case StoreRemoveProtected:
    case StoreRenameProtected:
      return IDXERR_PROTECTED;
    default:
      return IDXERR_FAILED;
  }
}

}  // namespace catalogcore
