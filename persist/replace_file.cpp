#include "persist/replace_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "base/heap_block.h"
#include "persist/file_descriptor.h"

namespace {

// A temporary file is named after its file: ".images.plist.catalogcore-4711-1". While its writer lives it is locked.
constexpr char kMark[] = ".catalogcore-";

struct CloseFolder {
  void operator()(DIR* folder) const { closedir(folder); }
};

struct Target {
  std::string folder;  // with a "/" at its end
  std::string name;
  bool exists = false;
  struct stat status {};

  std::string Path() const { return folder + name; }
  std::string TemporaryPrefix() const { return '.' + name + kMark; }
};

// Where the path leads, through symbolic links.
Target FindTarget(const char* path) {
  const HeapBlock<char> resolved(realpath(path, nullptr));
  const std::string whole = resolved ? resolved.get() : path;
  const std::size_t slash = whole.rfind('/');
  Target target;
  target.folder = slash == std::string::npos ? "./" : whole.substr(0, slash + 1);
  target.name = slash == std::string::npos ? whole : whole.substr(slash + 1);
  target.exists = stat(whole.c_str(), &target.status) == 0;
  return target;
}

// Removes the temporary files of this target that no living writer holds.
void RemoveLeftovers(const Target& target) {
  const std::unique_ptr<DIR, CloseFolder> folder(opendir(target.folder.c_str()));
  if (!folder) return;
  const std::string prefix = target.TemporaryPrefix();
  std::vector<std::string> leftovers;
  while (const dirent* const entry = readdir(folder.get())) {
    if (prefix.compare(0, prefix.size(), entry->d_name, 0, prefix.size()) == 0) leftovers.emplace_back(entry->d_name);
  }
  for (const std::string& name : leftovers) {
    const std::string path = target.folder + name;
    const FileDescriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    if (file.IsOpen() && flock(file.Get(), LOCK_EX | LOCK_NB) == 0) unlink(path.c_str());
  }
}

// Makes a file of a name that no other has; negative, with errno, when the folder takes none.
int CreateTemporary(const Target& target, std::string& path) {
  static std::atomic<unsigned> number{0};
  for (;;) {
    path = target.folder + target.TemporaryPrefix() + std::to_string(getpid()) + '-' + std::to_string(++number);
    const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (file >= 0 || errno != EEXIST) return file;
  }
}

bool WriteAll(int file, const UInt8* bytes, std::size_t size) {
  while (size > 0) {
    const ssize_t count = write(file, bytes, size);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes += count;
    size -= static_cast<std::size_t>(count);
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
  // The owner first: changing it may clear mode bits. Where it may not be changed, the writer owns the new file.
  [[maybe_unused]] const int owned = fchown(file, target.status.st_uid, target.status.st_gid);
  [[maybe_unused]] const int permitted = fchmod(file, target.status.st_mode & 07777);
}

bool WriteInPlace(const Target& target, const UInt8* bytes, std::size_t size) {
  FileDescriptor file(open(target.Path().c_str(), O_WRONLY | O_CLOEXEC));
  return file.IsOpen() && WriteAll(file.Get(), bytes, size) && ftruncate(file.Get(), static_cast<off_t>(size)) == 0 &&
         Flush(file.Get()) && file.Close();
}

}  // namespace

bool ReplaceFile(const char* path, const UInt8* bytes, std::size_t size) {
  const Target target = FindTarget(path);
  if (target.exists && faccessat(AT_FDCWD, target.Path().c_str(), W_OK, AT_EACCESS) != 0) return false;
  RemoveLeftovers(target);
  std::string temporary;
  FileDescriptor file(CreateTemporary(target, temporary));
  if (!file.IsOpen()) {
    const bool takesNoFile = errno == EACCES || errno == EPERM || errno == EROFS;
    return takesNoFile && target.exists && WriteInPlace(target, bytes, size);
  }
  flock(file.Get(), LOCK_EX | LOCK_NB);
  TakePermissions(file.Get(), target);
  const bool isWritten = WriteAll(file.Get(), bytes, size) && Flush(file.Get());
  if (!isWritten || std::rename(temporary.c_str(), target.Path().c_str()) != 0) {
    unlink(temporary.c_str());
    return false;
  }
  FlushFolder(target);
  return file.Close();
}
