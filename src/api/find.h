// The frame of every find. A handle is open from the find-first call that returns it until IDXCloseFind.
#ifndef CATALOGCORE_API_FIND_H_
#define CATALOGCORE_API_FIND_H_

#include <memory>

#include "api/catalogue.h"
#include "store/walks.h"

// The application's handle points to the store's own record.
struct IDXFINDHANDLE : catalogcore::SearchHandle {};

namespace catalogcore {

struct CloseHandle {
  void operator()(IDXFINDHANDLE* handle) const { IDXCloseFind(handle); }
};

using OwnedHandle = std::unique_ptr<IDXFINDHANDLE, CloseHandle>;

// Allocates a zero-filled handle and opens its find. Returns null on allocation failure. REQUIRES: the caller holds the
// catalogue's lock.
OwnedHandle NewHandle();

// Allocates a handle, and calls `start` to position it and fill the record, all under the catalogue's lock. Returns the
// handle if `start` returns IDX_OK, else null. `*status` (if not null) gets the status.
template <typename Start>
IDXFIND FindFirst(IDXITEM* item, IDXSTATUS* status, Start start) {
  OwnedHandle handle;
  const IDXSTATUS result = CatalogueCall(item, [&]() -> IDXSTATUS {
    const CatalogueGuard guard(*idData);
    handle = NewHandle();
    return handle ? start(*handle, *item) : static_cast<IDXSTATUS>(IDXERR_MEMORY);
  });
  if (status) *status = result;
  return result == IDX_OK ? handle.release() : nullptr;
}

// Calls `advance` to move the handle and fill the record under the catalogue's lock. Returns IDXERR_PARAM if the handle
// or the record is null, and `end` if the handle belongs to an earlier catalogue.
template <typename Advance>
IDXSTATUS FindNext(IDXFIND find, IDXITEM* item, IDXSTATUS end, Advance advance) {
  if (!find || !item) return IDXERR_PARAM;
  if (!idData || !idData->Finds().IsOpen(*find)) return end;
  return CatalogueCall(item, [&]() -> IDXSTATUS {
    const CatalogueGuard guard(*idData);
    return advance(*find, *item);
  });
}

}  // namespace catalogcore

#endif  // CATALOGCORE_API_FIND_H_
