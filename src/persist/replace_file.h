// Gives a file new content so that it is the old or the new one, whole, whatever fails in between.
#ifndef CATALOGCORE_PERSIST_REPLACE_FILE_H_
#define CATALOGCORE_PERSIST_REPLACE_FILE_H_

#include <initializer_list>
#include <string_view>

namespace catalogcore {

// Writes the parts, one behind the other, to a temporary file beside the file that `path` leads to (through symbolic
// links), flushes it to the disk and renames it over the file. The new file takes the permissions, and where possible the
// owner, of the file `permissionsOf`, or without it those of the file that it replaces. A file that may not be written is
// left alone. Where the folder takes no new file, or none in the old one's place, a file that may be written is written in
// place; a failure may leave that cut short. What an interrupted replacement of the same file left behind is removed. A
// write beyond RLIMIT_FSIZE is a failure and raises no signal. Returns whether the file has the new content. Any number of
// threads and processes may replace one file at once: the last rename wins. Throws std::bad_alloc.
bool ReplaceFile(const char* path, std::initializer_list<std::string_view> parts, const char* permissionsOf = nullptr);

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_REPLACE_FILE_H_
