#include "persist/replace_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "persist/file_descriptor.h"

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

// Makes a file of a name that no other has, and locks it; negative, with errno, when the folder takes none.
int CreateTemporary(const Target& target, std::string& path) {
  static std::atomic<unsigned> count{0};
  // Where there is a file, nobody may look into the new one who may not look into that.
  const mode_t mode = target.exists ? 0600 : 0666;
  for (;;) {
    path = target.folder + target.prefix + std::to_string(getpid()) + '-' + std::to_string(++count);
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (file < 0 && (errno == EEXIST || errno == EINTR)) continue;
    if (file < 0) return file;
    struct stat status {};
    flock(file, LOCK_EX | LOCK_NB);
    if (fstat(file, &status) != 0 || status.st_nlink > 0) return file;
    close(file);  // another writer took it for a leftover before it was locked
  }
}

using Parts = std::initializer_list<std::string_view>;

bool WriteAll(int file, Parts parts) {
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

void TakePermissions(int file, const Target& target) {
  if (!target.exists) return;
  mode_t mode = target.status.st_mode & 07777;
  // The owner first: changing it may clear bits of the mode. A group that cannot be kept takes its bits along.
  if (fchown(file, target.status.st_uid, target.status.st_gid) != 0 &&
      fchown(file, static_cast<uid_t>(-1), target.status.st_gid) != 0) {
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

bool ReplaceFile(const char* path, Parts parts) {
  const Target target(FollowLinks(path));
  if (!target.isKnown) return false;
  if (target.exists && faccessat(AT_FDCWD, target.path.c_str(), W_OK, AT_EACCESS) != 0) return false;
  RemoveLeftovers(target);
  std::string temporary;
  const FileDescriptor file(CreateTemporary(target, temporary));
  if (!file.IsOpen()) return IsFoldersRefusal(errno) && target.exists && WriteInPlace(target, parts);
  TakePermissions(file.Get(), target);
  const bool isWritten = WriteAll(file.Get(), parts) && Flush(file.Get());
  if (isWritten && std::rename(temporary.c_str(), target.path.c_str()) == 0) {
    FlushFolder(target);
    return true;
  }
  const bool isRefused = isWritten && IsFoldersRefusal(errno);
  unlink(temporary.c_str());
  return isRefused && target.exists && WriteInPlace(target, parts);
}
