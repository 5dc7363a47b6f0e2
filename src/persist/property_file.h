// One data item of a property-list file. All other entries of the file are kept.
#ifndef CATALOGCORE_PERSIST_PROPERTY_FILE_H_
#define CATALOGCORE_PERSIST_PROPERTY_FILE_H_

#include "base/idx_string.h"
#include "base/owners.h"

namespace catalogcore {

// Sets `value` to the data under `key`; null when the file or the key is missing. False when the file cannot be read,
// is not a property list with a dictionary at its top, or has another kind of value under the key.
bool ReadPropertyValue(CFURLRef url, CFStringRef key, CFReference<CFDataRef>& value);

// Sets the data under `key` to the buffer's text with its terminator, in the file's dictionary or, when the file is
// missing, in a new one, and replaces the file (replace_file.h). Returns 1; 0, with the file unchanged, for a buffer
// without a block, a file that ReadPropertyValue cannot read, or a failed write.
int _WriteKeyData(CFURLRef url, CFStringRef key, const CIDXBuffer& buffer);

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_PROPERTY_FILE_H_
