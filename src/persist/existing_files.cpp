#include "persist/existing_files.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstring>

#include "base/file_existence.h"

namespace catalogcore {

bool ExistingFiles::Has(const char* path) {
  const char* const slash = std::strrchr(path, '/');
  const bool isInFolder = *path == '/' && slash[1] != 0 && IsUtf8(path);
  if (!isInFolder || !Enter({path, static_cast<std::size_t>(slash + 1 - path)})) return IsFileExistAPI(path) == 1;
  return faccessat(folder_.Get(), slash + 1, F_OK, 0) == 0;
}

bool ExistingFiles::Enter(std::string_view folder) {
  if (folder != path_) {
    path_ = folder;
    // access() checks with the real user's rights; open() may have more.
    const bool exists = access(path_.c_str(), F_OK) == 0;
    folder_ = FileDescriptor(exists ? open(path_.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC) : -1);
  }
  return folder_.IsOpen();
}

}  // namespace catalogcore
