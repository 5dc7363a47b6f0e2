// Owns an open file or folder. Errors of close() are ignored: a writer flushes before, and gets its errors then.
#ifndef CATALOGCORE_PERSIST_FILE_DESCRIPTOR_H_
#define CATALOGCORE_PERSIST_FILE_DESCRIPTOR_H_

#include <unistd.h>

#include <utility>

namespace catalogcore {

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

 private:
  void Close() {
    if (IsOpen()) close(descriptor_);
  }

  int descriptor_;
};

}  // namespace catalogcore

#endif  // CATALOGCORE_PERSIST_FILE_DESCRIPTOR_H_
