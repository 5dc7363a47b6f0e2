#include "persist/read_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "persist/file_descriptor.h"

ReadResult ReadFile(const char* path, std::vector<UInt8>& content) {
  // Not waiting, should it be a pipe that nobody writes to.
  const FileDescriptor file(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (!file.IsOpen()) return errno == ENOENT || errno == ENOTDIR ? ReadResult::kMissing : ReadResult::kFailed;
  struct stat status {};
  if (fstat(file.Get(), &status) != 0 || !S_ISREG(status.st_mode)) return ReadResult::kFailed;
  // One byte more than there should be, so that the end is seen without growing.
  content.resize(static_cast<std::size_t>(status.st_size) + 1);
  std::size_t size = 0;
  for (;;) {
    const ssize_t count = read(file.Get(), content.data() + size, content.size() - size);
    if (count < 0 && errno == EINTR) continue;
    if (count < 0) return ReadResult::kFailed;
    if (count == 0) break;
    size += static_cast<std::size_t>(count);
    if (size == content.size()) content.resize(2 * size);
  }
  content.resize(size);
  return ReadResult::kRead;
}
