// Files that the program did not make. A name may lead to a pipe, which makes its reader wait, to a device, whose content
// has no end, or through a link to a file of somebody else's.
#ifndef CATALOGCORE_APP_REGULAR_FILE_H_
#define CATALOGCORE_APP_REGULAR_FILE_H_

#include <unistd.h>

#include <string>
#include <utility>

namespace catalogcore::app {

// Closes a file or folder that was opened. Negative: not opened.
class OwnedDescriptor {
 public:
  explicit OwnedDescriptor(int descriptor) : descriptor_(descriptor) {}
  OwnedDescriptor(OwnedDescriptor&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
  OwnedDescriptor(const OwnedDescriptor&) = delete;
  OwnedDescriptor& operator=(const OwnedDescriptor&) = delete;
  ~OwnedDescriptor() {
    if (IsOpen()) close(descriptor_);
  }

  bool IsOpen() const { return descriptor_ >= 0; }
  int Get() const { return descriptor_; }

 private:
  int descriptor_;
};

// Opens a regular file with the flags of open(), O_NOFOLLOW among them if links are to be refused. `folder` is a
// descriptor that a relative name starts from, or AT_FDCWD. Never waits. A file that is made is for its owner alone. On
// failure the result is not open and errno says why: ENXIO for what is not a regular file.
OwnedDescriptor OpenRegularFile(int folder, const std::string& name, int flags);

// errno of OpenRegularFile in words: "a link", "not a regular file", "Permission denied".
std::string WhyNotOpened(int code);

// The file from its start to its end. Throws std::system_error.
std::string ReadWholeFile(const OwnedDescriptor& file);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_REGULAR_FILE_H_
