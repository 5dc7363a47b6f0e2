// Owners of open files and folders. Errors of close() are ignored: a writer flushes before, and gets its errors then.
#ifndef CATALOGCORE_PERSIST_FILE_DESCRIPTOR_H_
#define CATALOGCORE_PERSIST_FILE_DESCRIPTOR_H_

#include <dirent.h>
#include <fcntl.h>
#include <unistd.h>

#include <memory>
#include <utility>

namespace catalogcore {

// An open file or folder.
class FileDescriptor {
 public:
  // `descriptor` is the result of open(): negative on failure.
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  FileDescriptor(FileDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  FileDescriptor& operator=(FileDescriptor&& other) noexcept {
    Close();
    descriptor_ = std::exchange(other.descriptor_, -1);
    return *this;
  }
  ~FileDescriptor() { Close(); }

  bool IsOpen() const { return descriptor_ >= 0; }
  int Get() const { return descriptor_; }
  // Gives up ownership.
  int Release() { return std::exchange(descriptor_, -1); }

 private:
  void Close() {
    if (IsOpen()) close(descriptor_);
  }

  int descriptor_;
};

struct CloseEntries {
  void operator()(DIR* entries) const { closedir(entries); }
};
using FolderEntries = std::unique_ptr<DIR, CloseEntries>;

// The entries of an open folder, from the first on, whatever was read from `folder` before. Null with errno on failure.
inline FolderEntries OpenEntries(int folder) {
  FileDescriptor file(openat(folder, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (!file.IsOpen()) return nullptr;
  FolderEntries entries(fdopendir(file.Get()));
  if (entries) file.Release();
  return entries;
}

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_FILE_DESCRIPTOR_H_
