// The frame of every find: one handle from find-first to close.
#ifndef CATALOGCORE_API_FIND_H_
#define CATALOGCORE_API_FIND_H_

#include "api/catalogue.h"
#include "base/heap_block.h"
#include "base/region_guard.h"
#include "store/search_handle.h"

using OwnedHandle = HeapBlock<SearchHandle>;

// A handle of zeros; null without memory.
inline OwnedHandle NewHandle() { return OwnedHandle(static_cast<SearchHandle*>(std::calloc(1, sizeof(SearchHandle)))); }

// Makes a handle and lets `start` place it and fill the record, all while the store's region is held. Returns the
// handle when `start` gives IDX_OK, else null. `*status` (if not null) gets the status.
template <typename Start>
IDXFIND FindFirst(IDXITEM* item, IDXSTATUS* status, Start start) {
  OwnedHandle handle;
  const IDXSTATUS result = CatalogueCall(item, [&]() -> IDXSTATUS {
    const RegionGuard region(idData->CriticalRegion());
    handle = NewHandle();
    return handle ? start(*handle, *item) : static_cast<IDXSTATUS>(IDXERR_MEMORY);
  });
  if (status) *status = result;
  return result == IDX_OK ? handle.release() : nullptr;
}

// Lets `advance` move the handle and fill the record while the store's region is held. IDXERR_PARAM without either.
template <typename Advance>
IDXSTATUS FindNext(IDXFIND find, IDXITEM* item, Advance advance) {
  if (!find) return IDXERR_PARAM;
  return CatalogueCall(item, [&]() -> IDXSTATUS {
    const RegionGuard region(idData->CriticalRegion());
    return advance(*find, *item);
  });
}

#endif  // CATALOGCORE_API_FIND_H_
