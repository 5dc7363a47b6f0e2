#include "app/regular_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <system_error>

namespace catalogcore::app {

FileDescriptor OpenRegularFile(int folder, const std::string& name, int flags) {
  FileDescriptor file(openat(folder, name.c_str(), flags | O_CLOEXEC | O_NONBLOCK | O_NOCTTY, 0600));
  struct stat status {};
  if (!file.IsOpen() || fstat(file.Get(), &status) != 0) return FileDescriptor(-1);
  if (S_ISREG(status.st_mode)) return file;
  errno = ENXIO;  // as open() has it of a socket
  return FileDescriptor(-1);
}

std::string WhyNotOpened(int code) {
  if (code == ELOOP) return "a link";
  if (code == ENXIO) return "not a regular file";
  return std::generic_category().message(code);
}

std::string ReadWholeFile(const FileDescriptor& file) {
  std::string content;
  std::array<char, 65536> piece{};
  for (;;) {
    const ssize_t size = pread(file.Get(), piece.data(), piece.size(), static_cast<off_t>(content.size()));
    if (size < 0 && errno == EINTR) continue;
    if (size < 0) throw std::system_error(errno, std::generic_category());
    if (size == 0) return content;
    content.append(piece.data(), static_cast<std::size_t>(size));
  }
}

}  // namespace catalogcore::app
