// One data item of a property-list file. All other entries of the file are kept.
#ifndef CATALOGCORE_PERSIST_PROPERTY_FILE_H_
#define CATALOGCORE_PERSIST_PROPERTY_FILE_H_

#include "base/idx_string.h"
#include "base/owners.h"

namespace catalogcore {

// Sets `value` to the data under `key`, or to null if the file or the key is missing. Returns false if the file cannot
// be read, is not a property list with a dictionary at its top, or has another kind of value under the key.
bool ReadPropertyValue(CFURLRef url, CFStringRef key, CFReference<CFDataRef>& value);

// Sets the data under `key` in the file's dictionary to the buffer's text with its terminator, and replaces the file
// (replace_file.h). A missing file is created. Returns 1, or 0 on failure: the buffer has no block, the file is not one
// that ReadPropertyValue can read, or the write failed. On failure the file is unchanged, with the exception that
// replace_file.h names.
int _WriteKeyData(CFURLRef url, CFStringRef key, const CIDXBuffer& buffer);

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_PROPERTY_FILE_H_
