#include "persist/replace_file.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <functional>
#include <string>
#include <utility>

#include "persist/temporary_file.h"

namespace catalogcore {

namespace {

using Parts = std::initializer_list<std::string_view>;

constexpr int kMostLinks = 40;  // the system's own limit

struct Target {
  explicit Target(std::string whole) : path(std::move(whole)) {
    const std::size_t slash = path.rfind('/');
    folder = slash == std::string::npos ? "./" : path.substr(0, slash + 1);
    name = path.substr(slash + 1);
    // The hash of the name, since the name itself may have the greatest length.
    prefix = ".catalogcore-" + std::to_string(std::hash<std::string>()(name)) + '-';
    exists = stat(path.c_str(), &status) == 0;
    isKnown = exists || (errno == ENOENT && !path.empty());
  }

  std::string path;
  std::string folder;  // with a "/" at its end
  std::string name;
  std::string prefix;  // of its temporary files
  bool exists = false;
  bool isKnown = false;  // whether `exists` is certain
  struct stat status {};
};

// The path after following symbolic links; the last one may lead to a missing file. Empty on failure.
std::string FollowLinks(std::string path) {
  for (int links = 0; links < kMostLinks; ++links) {
    char text[PATH_MAX];
    const ssize_t size = readlink(path.c_str(), text, sizeof text);
    if (size < 0 && errno != EINVAL && errno != ENOENT) return {};
    if (size <= 0) break;
    const std::string link(text, static_cast<std::size_t>(size));
    path.resize(link.front() == '/' ? 0 : path.rfind('/') + 1);
    path += link;
  }
  return path;
}

bool IsWritten(int file, Parts parts) {
  return std::all_of(parts.begin(), parts.end(), [file](std::string_view part) { return WriteAll(file, part); });
}

bool Flush(int file) {
  int result = 0;
  do {
    result = fsync(file);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

void TakePermissions(int file, const struct stat& source) {
  mode_t mode = source.st_mode & 07777;
  // The owner first: a change of owner may clear bits of the mode. If the group cannot be kept, neither are its
  // permissions.
  if (fchown(file, source.st_uid, source.st_gid) != 0 && fchown(file, static_cast<uid_t>(-1), source.st_gid) != 0) {
    mode &= ~static_cast<mode_t>(S_IRWXG);
  }
  [[maybe_unused]] const int permitted = fchmod(file, mode);
}

// Whether the error means that the folder does not allow new files, or does not allow the old file to be replaced.
bool IsFoldersRefusal(int error) { return error == EACCES || error == EPERM || error == EROFS || error == EBUSY; }

int OpenUninterrupted(const std::string& path, int flags) {
  for (;;) {
    const int file = open(path.c_str(), flags | O_CLOEXEC);
    if (file >= 0 || errno != EINTR) return file;
  }
}

bool WriteInPlace(const Target& target, Parts parts) {
  const FileDescriptor file(OpenUninterrupted(target.path, O_WRONLY));
  if (!file.IsOpen() || !IsWritten(file.Get(), parts)) return false;
  const off_t size = lseek(file.Get(), 0, SEEK_CUR);
  return ftruncate(file.Get(), size) == 0 && Flush(file.Get());
}

// Makes the rename durable. Errors are ignored: without the flush, a power cut leaves the old or the new file, whole.
void FlushFolder(const Target& target) {
  const FileDescriptor folder(open(target.folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.IsOpen()) Flush(folder.Get());
}

}  // namespace

bool ReplaceFile(const char* path, Parts parts) {
  const Target target(FollowLinks(path));
  if (!target.isKnown) return false;
  if (target.exists && faccessat(AT_FDCWD, target.path.c_str(), W_OK, AT_EACCESS) != 0) return false;
  const FileDescriptor folder(OpenUninterrupted(target.folder, O_PATH | O_DIRECTORY));
  TemporaryFile::RemoveLeftovers(folder.Get(), target.prefix);
  // Until the permissions are set, the new file is not more readable than the old one.
  TemporaryFile file(folder.Get(), target.prefix, target.exists ? 0600 : 0666);
  if (!file.IsOpen()) return IsFoldersRefusal(errno) && target.exists && WriteInPlace(target, parts);
  if (target.exists) TakePermissions(file.Descriptor(), target.status);
  if (!IsWritten(file.Descriptor(), parts) || !Flush(file.Descriptor())) return false;
  if (file.Rename(target.name)) {
    FlushFolder(target);
    return true;
  }
  const bool isRefused = IsFoldersRefusal(errno);
  file.Remove();
  return isRefused && target.exists && WriteInPlace(target, parts);
}

}  // namespace catalogcore
