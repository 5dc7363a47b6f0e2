// Whether a path names something.
#ifndef CATALOGCORE_BASE_FILE_EXISTENCE_H_
#define CATALOGCORE_BASE_FILE_EXISTENCE_H_

namespace catalogcore {

// 1 when the UTF-8 path names an existing file or folder (a symbolic link counts as what it leads to), else
// 0: also for null, for text that is not UTF-8, and where a folder on the way may not be searched.
int IsFileExistAPI(const char* path);

// Whether the text is UTF-8. Needs no memory, so that no image of a full path is taken for missing for want of it.
bool IsUtf8(const char* text);

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_FILE_EXISTENCE_H_
