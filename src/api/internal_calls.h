// Functions that belong to the interface by name but that no exported call uses.
#ifndef CATALOGCORE_API_INTERNAL_CALLS_H_
#define CATALOGCORE_API_INTERNAL_CALLS_H_

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

#include "base/idx_string.h"
#include "catalogcore.h"

namespace catalogcore {

// Begin and continue a walk over all folders. With IDXOP_CONDITION the walk begins at the folder `path`; "/" means all
// folders except those whose path begins with "/Volumes". `status` must not be null. It gets IDXERR_NOINDEX if there is
// no folder or if the handle could not be allocated.
IDXFIND IDXFindFirstPath(IDXITEM* item, IDXSTATUS* status);
IDXSTATUS IDXFindNextPath(IDXFIND find, IDXITEM* item);

// Sets `out` to a new string: the key of the first image in a bucket of the hash table of images, or empty text if the
// bucket is empty. Returns 1; after a failed allocation `out` is unchanged. Returns 0, with `out` unchanged, if the
// bucket is out of range or there is no catalogue. The key is read after the lock is released; the image may have been
// removed by then.
int IDXFindFirstHash(int32_t bucket, IDXSTR out);

// Writes "s:" over the first two characters of a key that begins with "//". Always 1.
int NormFilePathKey(CIDXString& key);

// A zero-terminated copy of the payload of a catalogue file, which the caller releases with free(). Null on failure.
// `*status` (if not null) gets IDXERR_PARAM for a null name, IDXERR_MEMORY, or the status of LoadPayload.
char* LoadIndexBuffer(IDXSTR name, std::int32_t* status);
char* LoadImageBuffer(IDXSTR name, std::int32_t* status);

// Reads the data item under `key` of a property-list file. If `block` is null, `*size` gets the length of the item.
// Otherwise at most `*size` bytes are copied into `block`, and `*size` gets their count. A missing file or key has 0
// bytes. Returns 1. Returns 0, with 0 bytes, if the file cannot be read, is not a property list with a dictionary at
// its top, or has another kind of value under the key. Returns 0 if `size` is null.
int _ReadKeyData(CFURLRef url, CFStringRef key, void* block, std::int32_t* size);

}  // namespace catalogcore

#endif  // CATALOGCORE_API_INTERNAL_CALLS_H_
