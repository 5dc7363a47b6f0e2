// A new file that is written under a temporary name and then renamed over the file that it replaces.
//
// The name of a temporary file is a prefix that the writer chooses, the number of the process, a "-" and a counter:
// "PREFIX123-1". The writer locks the file with flock(), and the system releases the lock when the writer ends. A file
// that has such a name and no lock is a leftover: an interrupted writer left it behind.
//
// A folder is given as an open descriptor. A name is that of a file in the folder, without "/". Symbolic links are not
// followed.
#ifndef CATALOGCORE_PERSIST_TEMPORARY_FILE_H_
#define CATALOGCORE_PERSIST_TEMPORARY_FILE_H_

#include <sys/types.h>

#include <string>
#include <string_view>

#include "persist/file_descriptor.h"

namespace catalogcore {

class TemporaryFile {
 public:
  // Creates a file with a unique name and the permissions `mode` without those in the umask, and locks the file. On
  // failure the file is not open and errno is set. `folder` must stay open as long as the object lives. Throws
  // std::bad_alloc.
  TemporaryFile(int folder, const std::string& prefix, mode_t mode);
  // Removes the file, unless it was renamed or removed.
  ~TemporaryFile() { Remove(); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  bool IsOpen() const { return file_.IsOpen(); }
  int Descriptor() const { return file_.Get(); }

  // Renames the file to `name`. Replaces an existing file of that name. On failure returns false and sets errno.
  bool Rename(const std::string& name);

  void Remove();

  // Whether the name has the form of a temporary file's name with this prefix.
  static bool IsTemporaryName(std::string_view prefix, std::string_view name);

  // Removes the leftovers with this prefix from the folder. Ignores failures. Throws std::bad_alloc.
  static void RemoveLeftovers(int folder, std::string_view prefix);

 private:
  int folder_;
  std::string name_;  // empty when no file is left to remove
  FileDescriptor file_;
};

// Writes all bytes at the file's position. On failure returns false and sets errno. A write beyond the limit on file
// sizes (RLIMIT_FSIZE) fails with EFBIG, and does not raise SIGXFSZ.
bool WriteAll(int file, std::string_view bytes);

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_TEMPORARY_FILE_H_
