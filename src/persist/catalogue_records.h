// What loading and writing have in common, whichever of the two catalogue files it is.
#ifndef CATALOGCORE_PERSIST_CATALOGUE_RECORDS_H_
#define CATALOGCORE_PERSIST_CATALOGUE_RECORDS_H_

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "base/idx_string.h"
#include "base/owners.h"
#include "catalogcore.h"

namespace catalogcore {

// The keys of the two payloads.
#define CATALOGCORE_INDEX_KEY CFSTR("IDXIndex")
#define CATALOGCORE_IMAGE_KEY CFSTR("IDXImage")

// Sets `payload` to that of the file of that name in the base directory, as the file holds it. IDXERR_PARAM without a
// name; IDXERR_FAILED when the name makes no path or the file cannot be read; IDXERR_NODATA when the file, its payload
// or the payload's text is not there; IDXERR_MEMORY.
IDXSTATUS LoadPayload(IDXSTR name, CFStringRef key, CFReference<CFDataRef>& payload);

// A payload's text, which may go on behind its terminator.
inline std::string_view TextOf(CFDataRef payload) {
  return {reinterpret_cast<const char*>(CFDataGetBytePtr(payload)), static_cast<std::size_t>(CFDataGetLength(payload))};
}

// A zero-terminated copy of the payload, to be released with free(). Null, with its status in `*status` (if not null), where
// LoadPayload fails or there is no memory for the copy.
char* LoadIndexBuffer(IDXSTR name, std::int32_t* status);
char* LoadImageBuffer(IDXSTR name, std::int32_t* status);

// Puts the payload that `fill` makes into the file of that name. IDXERR_PARAM without a name; IDXERR_FAILED when the
// name makes no path or the file cannot be read or written; else the status of `fill`.
IDXSTATUS WriteCatalogueFile(IDXSTR name, CFStringRef key, IDXSTATUS (*fill)(CIDXBuffer&));

// Fill the buffer with the payload. IDX_OK, IDXERR_FAILED before IDXInitialize, IDXERR_MEMORY.
IDXSTATUS GetIndexData(CIDXBuffer& payload);
IDXSTATUS GetImageData(CIDXBuffer& payload);

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_CATALOGUE_RECORDS_H_
