// Tests whether a path names an existing file or folder.
#ifndef CATALOGCORE_BASE_FILE_EXISTENCE_H_
#define CATALOGCORE_BASE_FILE_EXISTENCE_H_

namespace catalogcore {

// Returns 1 if the UTF-8 path names an existing file or folder; symbolic links are followed. Returns 0 otherwise, also
// for null, for text that is not valid UTF-8, and if a folder of the path may not be searched.
int IsFileExistAPI(const char* path);

// Returns whether the text is valid UTF-8. Allocates nothing, so that an allocation failure never makes an existing
// file appear missing.
bool IsUtf8(const char* text);

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_FILE_EXISTENCE_H_
