// Replaces the content of a file. After any failure the file has its old content, with one exception below.
#ifndef CATALOGCORE_PERSIST_REPLACE_FILE_H_
#define CATALOGCORE_PERSIST_REPLACE_FILE_H_

#include <initializer_list>
#include <string_view>

namespace catalogcore {

// Writes the parts, one after the other, to a temporary file beside the file that `path` leads to (through symbolic
// links), flushes the temporary file to the disk and renames it over the file. Returns whether the file has the new
// content. Throws std::bad_alloc.
//
// The new file has the permissions and, where possible, the owner of the old file. A file without write permission is
// not replaced. Leftovers of interrupted replacements of the same file are removed. Threads and processes may replace
// one file at the same time: the last rename wins.
//
// The exception: if the folder does not allow new files, a file with write permission is overwritten in place. A
// failure can then cut the file short.
bool ReplaceFile(const char* path, std::initializer_list<std::string_view> parts);

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_REPLACE_FILE_H_
