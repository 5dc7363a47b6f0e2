// The frame of every find: one handle from find-first to close, open all that time.
#ifndef CATALOGCORE_API_FIND_H_
#define CATALOGCORE_API_FIND_H_

#include <cstdlib>
#include <memory>

#include "api/catalogue.h"
#include "store/walks.h"

// What the application's handle points to: the store's record under a name that no application has.
struct IDXFINDHANDLE : catalogcore::SearchHandle {};

namespace catalogcore {

struct CloseHandle {
  void operator()(IDXFINDHANDLE* handle) const { IDXCloseFind(handle); }
};

using OwnedHandle = std::unique_ptr<IDXFINDHANDLE, CloseHandle>;

// The handle of an open find, zeros otherwise; null without memory. The caller holds the store's region.
inline OwnedHandle NewHandle() {
  OwnedHandle handle(static_cast<IDXFINDHANDLE*>(std::calloc(1, sizeof(IDXFINDHANDLE))));
  if (handle && !idData->Finds().Open(*handle)) handle.reset();
  return handle;
}

// Makes a handle and lets `start` place it and fill the record, all while the store's region is held. Returns the
// handle when `start` gives IDX_OK, else null. `*status` (if not null) gets the status.
template <typename Start>
IDXFIND FindFirst(IDXITEM* item, IDXSTATUS* status, Start start) {
  OwnedHandle handle;
  const IDXSTATUS result = CatalogueCall(item, [&]() -> IDXSTATUS {
    const CatalogueGuard guard;
    handle = NewHandle();
    return handle ? start(*handle, *item) : static_cast<IDXSTATUS>(IDXERR_MEMORY);
  });
  if (status) *status = result;
  return result == IDX_OK ? handle.release() : nullptr;
}

// Lets `advance` move the handle and fill the record while the store's region is held. IDXERR_PARAM without either;
// `end` when the catalogue that the find was opened in is gone.
template <typename Advance>
IDXSTATUS FindNext(IDXFIND find, IDXITEM* item, IDXSTATUS end, Advance advance) {
  if (!find || !item) return IDXERR_PARAM;
  if (!idData || !idData->Finds().IsOpen(*find)) return end;
  return CatalogueCall(item, [&]() -> IDXSTATUS {
    const CatalogueGuard guard;
    return advance(*find, *item);
  });
}

}  // namespace catalogcore

#endif  // CATALOGCORE_API_FIND_H_
