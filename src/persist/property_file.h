// One entry of a property-list file: reading it, and changing it while every other entry stays.
#ifndef CATALOGCORE_PERSIST_PROPERTY_FILE_H_
#define CATALOGCORE_PERSIST_PROPERTY_FILE_H_

#include <CoreFoundation/CoreFoundation.h>

#include <cstdint>

#include "base/idx_string.h"

namespace catalogcore {

// Reads the data item under `key`. With a null block `*size` gets its length; else `*size` bytes at most are copied
// into `block` and `*size` gets how many. A file or key that is not there reads as 0 bytes. Returns 1; 0, with 0 bytes,
// when the file cannot be read, is no property list with a dictionary at its top, or holds no data under the key; 0
// also when `size` is null.
int _ReadKeyData(CFURLRef url, CFStringRef key, void* block, std::int32_t* size);

// Puts the buffer's text with its terminator under `key`, in the file's dictionary or, where there is no file, in a new
// one, and replaces the file by it (replace_file.h). Returns 1; 0, with the file as it was, for a buffer without a
// block, a file that _ReadKeyData could not read, or one that cannot be written.
int _WriteKeyData(CFURLRef url, CFStringRef key, const CIDXBuffer& buffer);

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_PROPERTY_FILE_H_
