// Checks whether files exist, one after the other.
#ifndef CATALOGCORE_PERSIST_EXISTING_FILES_H_
#define CATALOGCORE_PERSIST_EXISTING_FILES_H_

#include <string>
#include <string_view>

#include "persist/file_descriptor.h"

namespace catalogcore {

// Keeps the folder of the last path open. Most paths are in the folder of the path before, and the system then does not
// resolve that folder again.
class ExistingFiles {
 public:
  // The result of IsFileExistAPI for the path, as a truth value. Throws std::bad_alloc.
  bool Has(const char* path);

 private:
  bool Enter(std::string_view folder);

  std::string path_;  // of the open folder, with a "/" at its end
  FileDescriptor folder_{-1};
};

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_EXISTING_FILES_H_
