// Whether files exist, asked for one after the other.
#ifndef CATALOGCORE_PERSIST_EXISTING_FILES_H_
#define CATALOGCORE_PERSIST_EXISTING_FILES_H_

#include <string>
#include <string_view>

#include "persist/file_descriptor.h"

namespace catalogcore {

// Keeps the folder of the last path open: most paths lie in the folder of the one before, and then the system need not
// go the way from the root to it again.
class ExistingFiles {
 public:
  // What IsFileExistAPI says of the path. Throws std::bad_alloc.
  bool Has(const char* path);

 private:
  bool Enter(std::string_view folder);

  std::string path_;  // of the open folder, with a "/" at its end
  FileDescriptor folder_{-1};
};

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_EXISTING_FILES_H_
