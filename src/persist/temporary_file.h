// A new file that is written under a temporary name and then renamed over the file that it replaces.
//
// A temporary file is named PREFIX, PID, "-" and COUNT, and locked with flock() while its writer lives. A file of such
// a name that nobody locks is a leftover of an interrupted writer. A folder is given by a descriptor, and names are
// those of single entries of that folder; links are not followed.
#ifndef CATALOGCORE_PERSIST_TEMPORARY_FILE_H_
#define CATALOGCORE_PERSIST_TEMPORARY_FILE_H_

#include <sys/types.h>

#include <string>
#include <string_view>

#include "persist/file_descriptor.h"

namespace catalogcore {

class TemporaryFile {
 public:
  // Creates a file of a unique name, with the permissions `mode` less the umask, and locks it. On failure the file is
  // not open and errno is set. `folder` must stay open as long as the object lives. Throws std::bad_alloc.
  TemporaryFile(int folder, const std::string& prefix, mode_t mode);
  // Removes the file unless it was renamed.
  ~TemporaryFile() { Remove(); }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;

  bool IsOpen() const { return file_.IsOpen(); }
  int Descriptor() const { return file_.Get(); }

  // Renames the file to `name`, which is replaced if it exists. On failure returns false and sets errno.
  bool Rename(const std::string& name);

  void Remove();

  // Whether a temporary file with this prefix may have the name.
  static bool IsTemporaryName(std::string_view prefix, std::string_view name);

  // Removes the leftovers in the folder whose names begin with the prefix. Failures are ignored. Throws std::bad_alloc.
  static void RemoveLeftovers(int folder, std::string_view prefix);

 private:
  int folder_;
  std::string name_;  // empty when no file is left to remove
  FileDescriptor file_;
};

// Writes all bytes at the file's position. On failure returns false and sets errno. A write beyond RLIMIT_FSIZE fails
// with EFBIG and raises no signal.
bool WriteAll(int file, std::string_view bytes);

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_TEMPORARY_FILE_H_
