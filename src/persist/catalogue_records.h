// Loads the records of a catalogue file into a catalogue, and writes the records of a catalogue to its file.
//
// A catalogue file is an XML property list (property_file.h). The data item under the file's key is the payload
// (payload.h): one record for each index, or for each image. Every path is the whole path of a file. The catalogue is
// locked while records are added to it or read from it, and never while a file is read, written or looked for.
#ifndef CATALOGCORE_PERSIST_CATALOGUE_RECORDS_H_
#define CATALOGCORE_PERSIST_CATALOGUE_RECORDS_H_

#include <cstddef>
#include <string_view>

#include "base/idx_string.h"
#include "base/owners.h"
#include "catalogcore.h"
#include "store/index_data.h"

namespace catalogcore {

// The keys of the two payloads.
#define CATALOGCORE_INDEX_KEY CFSTR("IDXIndex")
#define CATALOGCORE_IMAGE_KEY CFSTR("IDXImage")

// Add the records of the file to the catalogue. Records that the store refuses are skipped, and so are images whose
// file does not exist. IDXERR_FAILED, IDXERR_NODATA and IDXERR_MEMORY as LoadPayload; IDXERR_EMPTY when an index file
// has no line; IDXERR_VERSION when the first line is not the version tag.
IDXSTATUS LoadIndexRecords(CIndexData& data, const char* path);
IDXSTATUS LoadImageRecords(CIndexData& data, const char* path);

// Replace the payload in the file, or create the file. IDXERR_MEMORY when the payload cannot be allocated;
// IDXERR_FAILED when the path is invalid, or the file cannot be read or written. On failure the file is unchanged
// (replace_file.h names the exception).
IDXSTATUS WriteIndexRecords(CIndexData& data, const char* path);
IDXSTATUS WriteImageRecords(CIndexData& data, const char* path);

// Set `payload` to the data item under `key`. IDXERR_FAILED when the path is invalid or the file cannot be read;
// IDXERR_NODATA when the file or the item is missing, or the item is empty; IDXERR_MEMORY.
IDXSTATUS LoadPayload(const char* path, CFStringRef key, CFReference<CFDataRef>& payload);

// Fill the buffer with the payload. IDX_OK or IDXERR_MEMORY.
IDXSTATUS GetIndexData(CIndexData& data, CIDXBuffer& payload);
IDXSTATUS GetImageData(CIndexData& data, CIDXBuffer& payload);

// The bytes of a data object.
inline std::string_view TextOf(CFDataRef data) {
  return {reinterpret_cast<const char*>(CFDataGetBytePtr(data)), static_cast<std::size_t>(CFDataGetLength(data))};
}

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_CATALOGUE_RECORDS_H_
