// Three calls of the family that stay inside the library.
#ifndef CATALOGCORE_API_INTERNAL_CALLS_H_
#define CATALOGCORE_API_INTERNAL_CALLS_H_

#include "catalogcore.h"

namespace catalogcore {

// Walks the folders; under IDXOP_CONDITION from `path` ("/": all but those on mounted volumes). `status` must not be
// null; it gets IDXERR_NOINDEX when there is no folder, also when there is no memory for the handle.
IDXFIND IDXFindFirstPath(IDXITEM* item, IDXSTATUS* status);
IDXSTATUS IDXFindNextPath(IDXFIND find, IDXITEM* item);

// Hands out the key of the first image of a bucket of the image table, the empty text if there is none, nothing without
// memory. Returns 1; 0, with nothing written, for a number that no bucket has. The key is read after the region was
// left, so that the image may be removed by then.
int IDXFindFirstHash(int32_t bucket, IDXSTR out);

}  // namespace catalogcore

#endif  // CATALOGCORE_API_INTERNAL_CALLS_H_
