// The folder part of an image's path.
#ifndef CATALOGCORE_BASE_FILE_PATH_H_
#define CATALOGCORE_BASE_FILE_PATH_H_

#include "base/idx_string.h"

namespace catalogcore {

// Sets `folder` to the part of `file` before the last "/" and returns 1. Returns 0, with `folder` unchanged, if
// `file` has no "/" or memory cannot be allocated.
int ExtractFilePath(CIDXString& folder, const CIDXString& file);

}  // namespace catalogcore

#endif  // CATALOGCORE_BASE_FILE_PATH_H_
