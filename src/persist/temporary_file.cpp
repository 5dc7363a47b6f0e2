#include "persist/temporary_file.h"

#include <dirent.h>
#include <fcntl.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <ctime>
#include <memory>
#include <vector>

namespace catalogcore {

namespace {

std::vector<std::string> TemporaryNames(int folder, std::string_view prefix) {
  std::vector<std::string> names;
  const FolderEntries entries = OpenEntries(folder);
  if (!entries) return names;
  while (const dirent* const entry = readdir(entries.get())) {
    if (TemporaryFile::IsTemporaryName(prefix, entry->d_name)) names.emplace_back(entry->d_name);
  }
  return names;
}

bool IsRegularFile(int file) {
  struct stat status {};
  return fstat(file, &status) == 0 && S_ISREG(status.st_mode);
}

// Locks a file that was just created. False when another writer took the file for a leftover before it was locked. On a
// file system without locks no writer removes leftovers, and the file counts as locked.
bool Lock(int file) {
  if (flock(file, LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) return false;
  struct stat status {};
  return fstat(file, &status) != 0 || status.st_nlink > 0;
}

// While one lives, a write beyond the limit on file sizes (RLIMIT_FSIZE) fails with EFBIG and does not send this thread
// the signal that ends the process. Signal handlers and other threads are unaffected.
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
  bool wasPending_;  // only possible when the application blocks the signal
};

}  // namespace

TemporaryFile::TemporaryFile(int folder, const std::string& prefix, mode_t mode) : folder_(folder), file_(-1) {
  constexpr int kMostAttempts = 1000;  // an attempt fails when the name is taken, or by another writer
  static std::atomic<unsigned> count{0};
  for (int attempt = 0; attempt < kMostAttempts; ++attempt) {
    std::string name = prefix + std::to_string(getpid()) + '-' + std::to_string(++count);
    FileDescriptor file(openat(folder, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode));
    if (!file.IsOpen() && (errno == EEXIST || errno == EINTR)) continue;
    if (!file.IsOpen()) return;
    if (!Lock(file.Get())) continue;
    name_ = std::move(name);
    file_ = std::move(file);
    return;
  }
  errno = EAGAIN;
}

bool TemporaryFile::Rename(const std::string& name) {
  if (renameat(folder_, name_.c_str(), folder_, name.c_str()) != 0) return false;
  name_.clear();
  return true;
}

void TemporaryFile::Remove() {
  if (!name_.empty()) unlinkat(folder_, name_.c_str(), 0);
  name_.clear();
}

bool TemporaryFile::IsTemporaryName(std::string_view prefix, std::string_view name) {
  if (!name.starts_with(prefix)) return false;
  name.remove_prefix(prefix.size());
  const std::size_t dash = name.find('-');
  const auto isNumber = [](std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == text.npos;
  };
  return dash != name.npos && isNumber(name.substr(0, dash)) && isNumber(name.substr(dash + 1));
}

void TemporaryFile::RemoveLeftovers(int folder, std::string_view prefix) {
  for (const std::string& name : TemporaryNames(folder, prefix)) {
    const FileDescriptor file(openat(folder, name.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK));
    const bool isLeftover = file.IsOpen() && IsRegularFile(file.Get()) && flock(file.Get(), LOCK_EX | LOCK_NB) == 0;
    if (isLeftover) unlinkat(folder, name.c_str(), 0);
  }
}

bool WriteAll(int file, std::string_view bytes) {
  const FileSizeSignalBlock noSignal;
  while (!bytes.empty()) {
    const ssize_t count = write(file, bytes.data(), bytes.size());
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) return false;
    bytes.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

}  // namespace catalogcore
