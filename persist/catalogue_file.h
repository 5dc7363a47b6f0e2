// What loading and writing have in common, whichever of the two catalogue files it is.
#ifndef CATALOGCORE_PERSIST_CATALOGUE_FILE_H_
#define CATALOGCORE_PERSIST_CATALOGUE_FILE_H_

#include <cstdint>

#include "base/cf_reference.h"
#include "base/idx_buffer.h"
#include "catalogcore.h"

// The keys of the two payloads.
#define CATALOGCORE_INDEX_KEY CFSTR("IDXIndex")
#define CATALOGCORE_IMAGE_KEY CFSTR("IDXImage")

// A zero-terminated copy of the payload of the file of that name in the base directory, to be released with free().
// Null, with `*status` (if not null): IDXERR_PARAM without a name; IDXERR_FAILED when the name makes no path or the
// file cannot be read; IDXERR_NODATA when the file, its payload or the payload's text is not there; IDXERR_MEMORY.
char* LoadIndexBuffer(IDXSTR name, std::int32_t* status);
char* LoadImageBuffer(IDXSTR name, std::int32_t* status);

// Puts the payload that `fill` makes into the file of that name. IDXERR_PARAM without a name; IDXERR_FAILED when the
// name makes no path or the file cannot be read or written; else the status of `fill`.
IDXSTATUS WriteCatalogueFile(IDXSTR name, CFStringRef key, IDXSTATUS (*fill)(CIDXBuffer&));

// Fill the buffer with the payload. IDX_OK, IDXERR_FAILED before IDXInitialize, IDXERR_MEMORY.
IDXSTATUS GetIndexData(CIDXBuffer& payload);
IDXSTATUS GetImageData(CIDXBuffer& payload);

#endif  // CATALOGCORE_PERSIST_CATALOGUE_FILE_H_
