// The whole content of a file.
#ifndef CATALOGCORE_PERSIST_READ_FILE_H_
#define CATALOGCORE_PERSIST_READ_FILE_H_

#include <CoreFoundation/CoreFoundation.h>

#include <vector>

enum class ReadResult { kRead, kMissing, kFailed };

// Reads the file into `content`. kMissing when nothing has that path; kFailed for what is no regular file or cannot be
// read. Throws std::bad_alloc.
ReadResult ReadFile(const char* path, std::vector<UInt8>& content);

#endif  // CATALOGCORE_PERSIST_READ_FILE_H_
