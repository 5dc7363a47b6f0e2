#include "persist/replace_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "persist/file_descriptor.h"

namespace catalogcore {

namespace {

// A temporary file is named after its file by a number, since the name itself may be as long as names can be:
// ".catalogcore-HASH-PID-COUNT". While its writer lives it is locked.
constexpr char kMark[] = ".catalogcore-";
constexpr int kMostLinks = 40;  // as many as the system follows

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

struct Target {
  explicit Target(std::string whole) : path(std::move(whole)) {
    const std::size_t slash = path.rfind('/');
    folder = slash == std::string::npos ? "./" : path.substr(0, slash + 1);
    prefix += std::to_string(std::hash<std::string>()(path.substr(slash + 1)));
    prefix += '-';
    exists = stat(path.c_str(), &status) == 0;
    isKnown = exists || (errno == ENOENT && !path.empty());
  }

  std::string path;
  std::string folder;          // with a "/" at its end
  std::string prefix = kMark;  // of its temporary files' names
  bool exists = false;
  bool isKnown = false;  // whether it exists could be told
  struct stat status {};
};

// Where the path leads, through symbolic links, also to a file that is not there yet. Empty if that cannot be told.
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

// Whether what follows the prefix is "PID-COUNT".
bool IsTemporaryName(const std::string& prefix, const std::string& name) {
  if (name.compare(0, prefix.size(), prefix) != 0) return false;
  const std::size_t dash = name.find('-', prefix.size());
  return dash != std::string::npos && dash > prefix.size() && dash + 1 < name.size() &&
         name.find_first_not_of("0123456789-", prefix.size()) == std::string::npos;
}

// Removes the temporary files of this target that no living writer holds.
void RemoveLeftovers(const Target& target) {
  const std::unique_ptr<DIR, CloseFolder> folder(opendir(target.folder.c_str()));
  if (!folder) return;
  std::vector<std::string> leftovers;
  while (const dirent* const entry = readdir(folder.get())) {
    if (IsTemporaryName(target.prefix, entry->d_name)) leftovers.push_back(target.folder + entry->d_name);
  }
  for (const std::string& path : leftovers) {
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file.IsOpen() && flock(file.Get(), LOCK_EX | LOCK_NB) == 0) unlink(path.c_str());
  }
}

// Whether the file, which was made just now, is locked for this writer. Until then another writer may take it for a
// leftover and lock it first, which removes it. Where the file system has no locks, no writer removes leftovers.
bool HasLocked(int file) {
  if (flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
  struct stat status {};
  return fstat(file, &status) != 0 || status.st_nlink > 0;
}

// Creates a file of a name that no other has, and locks it; negative, with errno, when the folder takes none.
int CreateTemporary(const Target& target, mode_t mode, std::string& path) {
  constexpr int kMostAttempts = 1000;  // each fails for another file or another writer
  static std::atomic<unsigned> count{0};
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    path = target.folder + target.prefix + std::to_string(getpid()) + '-' + std::to_string(++count);
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
    if (file < 0 && (errno == EEXIST || errno == EINTR)) continue;
    if (file < 0 || HasLocked(file)) return file;
    close(file);
  }
  errno = EAGAIN;
  return -1;
}

// While it lives, a write beyond the limit on file sizes (RLIMIT_FSIZE) fails with EFBIG, but does not send this thread
// the signal that would end the process. Handlers and other threads are not touched.
class FileSizeSignalBlock {
 public:
  FileSizeSignalBlock() {
    sigemptyset(&signal_);
    sigaddset(&signal_, SIGXFSZ);
    sigset_t pending;
    sigpending(&pending);
    wasPending_ = sigismember(&pending, SIGXFSZ) == 1;
    pthread_sigmask(SIG_BLOCK, &signal_, &maskBefore_);
  }
  ~FileSizeSignalBlock() {
    const int error = errno;
    if (!wasPending_) Consume();
    pthread_sigmask(SIG_SETMASK, &maskBefore_, nullptr);
    errno = error;
  }
  FileSizeSignalBlock(const FileSizeSignalBlock&) = delete;
  FileSizeSignalBlock& operator=(const FileSizeSignalBlock&) = delete;

 private:
  void Consume() const {
    constexpr timespec kNow{};
    while (sigtimedwait(&signal_, nullptr, &kNow) < 0 && errno == EINTR) {
    }
  }

  sigset_t signal_, maskBefore_;
  bool wasPending_;  // which only a signal that the application blocks can be
};

using Parts = std::initializer_list<std::string_view>;

bool WriteAll(int file, Parts parts) {
  const FileSizeSignalBlock noSignal;
  for (std::string_view part : parts) {
    while (!part.empty()) {
      const ssize_t count = write(file, part.data(), part.size());
      if (count < 0 && errno == EINTR) continue;
      if (count <= 0) return false;
      part.remove_prefix(static_cast<std::size_t>(count));
    }
  }
  return true;
}

bool Flush(int file) {
  int result = 0;
  do {
    result = fsync(file);
  } while (result != 0 && errno == EINTR);
  return result == 0;
}

// So that the renaming outlasts a power cut. The file is whole either way, so a folder that cannot be flushed is no
// failure.
void FlushFolder(const Target& target) {
  const FileDescriptor folder(open(target.folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  if (folder.IsOpen()) Flush(folder.Get());
}

void TakePermissions(int file, const struct stat& source) {
  mode_t mode = source.st_mode & 07777;
  // The owner first: changing it may clear bits of the mode. A group that cannot be kept takes its bits along.
  if (fchown(file, source.st_uid, source.st_gid) != 0 && fchown(file, static_cast<uid_t>(-1), source.st_gid) != 0) {
    mode &= ~static_cast<mode_t>(S_IRWXG);
  }
  [[maybe_unused]] const int permitted = fchmod(file, mode);
}

// Whether a failure of the folder's says that it takes no new file, or no other in place of the old one.
bool IsFoldersRefusal(int error) { return error == EACCES || error == EPERM || error == EROFS || error == EBUSY; }

int OpenToWrite(const char* path) {
  for (;;) {
    const int file = open(path, O_WRONLY | O_CLOEXEC);
    if (file >= 0 || errno != EINTR) return file;
  }
}

bool WriteInPlace(const Target& target, Parts parts) {
  const FileDescriptor file(OpenToWrite(target.path.c_str()));
  if (!file.IsOpen() || !WriteAll(file.Get(), parts)) return false;
  const off_t size = lseek(file.Get(), 0, SEEK_CUR);
  return ftruncate(file.Get(), size) == 0 && Flush(file.Get());
}

}  // namespace

bool ReplaceFile(const char* path, Parts parts, const char* permissionsOf) {
  const Target target(FollowLinks(path));
  if (!target.isKnown) return false;
  if (target.exists && faccessat(AT_FDCWD, target.path.c_str(), W_OK, AT_EACCESS) != 0) return false;
  struct stat permissions = target.status;
  if (permissionsOf && stat(permissionsOf, &permissions) != 0) return false;
  const bool hasPermissions = permissionsOf || target.exists;
  RemoveLeftovers(target);
  std::string temporary;
  // The new file is never more readable than the one whose permissions it takes.
  const FileDescriptor file(CreateTemporary(target, hasPermissions ? 0600 : 0666, temporary));
  if (!file.IsOpen()) return IsFoldersRefusal(errno) && target.exists && WriteInPlace(target, parts);
  if (hasPermissions) TakePermissions(file.Get(), permissions);
  const bool isWritten = WriteAll(file.Get(), parts) && Flush(file.Get());
  if (isWritten && std::rename(temporary.c_str(), target.path.c_str()) == 0) {
    FlushFolder(target);
    return true;
  }
  const bool isRefused = isWritten && IsFoldersRefusal(errno);
  unlink(temporary.c_str());
  return isRefused && target.exists && WriteInPlace(target, parts);
}

}  // namespace catalogcore
