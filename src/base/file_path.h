// The keys that an image's path leads to.
#ifndef CATALOGCORE_BASE_FILE_PATH_H_
#define CATALOGCORE_BASE_FILE_PATH_H_

#include "base/idx_string.h"

namespace catalogcore {

// Sets `folder` to what lies before the last "/" of `file` and returns 1; returns 0, with `folder` unchanged, when
// there is no "/" or no memory.
int ExtractFilePath(CIDXString& folder, const CIDXString& file);

// Writes "s:" over the first two characters of a key that begins with "//". Always 1. The calls do without it.
int NormFilePathKey(CIDXString& key);

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_FILE_PATH_H_
