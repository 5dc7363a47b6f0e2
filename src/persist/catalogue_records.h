// Loads the entries of a catalogue file into a catalogue, and writes the entries of a catalogue to a file.
//
// A catalogue file is an XML property list (property_file.h). It has up to two data items: one for the indexes under
// CATALOGCORE_INDEX_KEY, and one for the images under CATALOGCORE_IMAGE_KEY. Such an item is a payload (payload.h): a
// text with one line for each entry. `path` is the path of the catalogue file.
//
// The functions lock the catalogue only while they add entries to the catalogue or read them from it. They do not hold
// the lock while they read or write a file, or check whether a file exists.
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

// Add the entries of the file to the catalogue. Entries that the store refuses are skipped, and so are images whose
// file does not exist. Return the statuses of LoadPayload; IDXERR_EMPTY if the payload of indexes has no line;
// IDXERR_VERSION if the first line is not the version tag, or if the payload of images has no line; IDXERR_MEMORY if an
// allocation failed. After IDXERR_MEMORY some of the entries may have been added.
IDXSTATUS LoadIndexRecords(CIndexData& data, const char* path);
IDXSTATUS LoadImageRecords(CIndexData& data, const char* path);

// Replace the payload in the file, or create the file. IDXERR_MEMORY if the payload cannot be allocated; IDXERR_FAILED
// if the path is invalid, or the file cannot be read or written. On failure the file is unchanged, with the exception
// that replace_file.h names.
IDXSTATUS WriteIndexRecords(CIndexData& data, const char* path);
IDXSTATUS WriteImageRecords(CIndexData& data, const char* path);

// Sets `payload` to the data item under `key`. IDXERR_FAILED if the path is invalid or the file cannot be read;
// IDXERR_NODATA if the file or the item is missing, or the item is empty.
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
