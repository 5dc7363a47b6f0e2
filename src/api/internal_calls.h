// Functions that belong to the interface by name but that no exported call uses.
#ifndef CATALOGCORE_API_INTERNAL_CALLS_H_
#define CATALOGCORE_API_INTERNAL_CALLS_H_

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

#include "base/idx_string.h"
#include "catalogcore.h"

namespace catalogcore {

// Finds the folders; under IDXOP_CONDITION from `path` ("/": all but those on mounted volumes). `status` must not be
// null; it gets IDXERR_NOINDEX when there is no folder, and also without memory for the handle.
IDXFIND IDXFindFirstPath(IDXITEM* item, IDXSTATUS* status);
IDXSTATUS IDXFindNextPath(IDXFIND find, IDXITEM* item);

// Sets `out` to a new string, the key of the first image in a bucket of the image table, or the empty text for an empty
// bucket; leaves it unchanged without memory. Returns 1; 0, with `out` unchanged, when the bucket is out of range. The
// key is read after the lock is left, so that the image may be removed by then.
int IDXFindFirstHash(int32_t bucket, IDXSTR out);

// Writes "s:" over the first two characters of a key that begins with "//". Always 1.
int NormFilePathKey(CIDXString& key);

// A zero-terminated copy of the payload of a catalogue file, which the caller releases with free(). Null on failure.
// `*status` (if not null) gets IDXERR_PARAM for a null name, IDXERR_MEMORY, or the status of LoadPayload.
char* LoadIndexBuffer(IDXSTR name, std::int32_t* status);
char* LoadImageBuffer(IDXSTR name, std::int32_t* status);

// Reads the data item under `key` of a property-list file. With a null block, `*size` gets its length; else at most
// `*size` bytes are copied into `block`, and `*size` gets their count. A missing file or key has 0 bytes. Returns 1; 0,
// with 0 bytes, when the file cannot be read, is not a property list with a dictionary at its top, or has another kind
// of value under the key; 0 also when `size` is null.
int _ReadKeyData(CFURLRef url, CFStringRef key, void* block, std::int32_t* size);

}  // namespace catalogcore

#endif  // CATALOGCORE_API_INTERNAL_CALLS_H_
