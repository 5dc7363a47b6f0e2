// Gives a file new content so that it is the old or the new one, whole, whatever fails in between.
#ifndef CATALOGCORE_PERSIST_REPLACE_FILE_H_
#define CATALOGCORE_PERSIST_REPLACE_FILE_H_

#include <initializer_list>
#include <string_view>

// Writes the parts, one behind the other, to a temporary file beside the file that `path` leads to (through symbolic
// links), flushes it to the disk and renames it over the file, whose permissions it takes. A file that may not be written
// is left alone. Where the folder takes no new file, or none in the old one's place, a file that may be written is written
// in place; a failure may leave that cut short. What an interrupted replacement of the same file left behind is removed.
// Returns whether the file has the new content. Throws std::bad_alloc.
bool ReplaceFile(const char* path, std::initializer_list<std::string_view> parts);

#endif  // CATALOGCORE_PERSIST_REPLACE_FILE_H_
