// Owns an open file. What closing it says is not looked at: who writes flushes before, and hears of failures then.
#ifndef CATALOGCORE_PERSIST_FILE_DESCRIPTOR_H_
#define CATALOGCORE_PERSIST_FILE_DESCRIPTOR_H_

#include <unistd.h>

namespace catalogcore {

class FileDescriptor {
 public:
  // `descriptor` is what open() gave: negative if it failed.
  explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
  ~FileDescriptor() { Close(); }
  FileDescriptor(const FileDescriptor&) = delete;
  FileDescriptor& operator=(const FileDescriptor&) = delete;
  // Closes what it had.
  void Open(int descriptor) {
    Close();
    descriptor_ = descriptor;
  }

  bool IsOpen() const { return descriptor_ >= 0; }
  int Get() const { return descriptor_; }

  void Close() {
    if (descriptor_ >= 0) close(descriptor_);
    descriptor_ = -1;
  }

 private:
  int descriptor_;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_FILE_DESCRIPTOR_H_
