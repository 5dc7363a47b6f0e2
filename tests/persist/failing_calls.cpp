#include "tests/persist/failing_calls.h"

#include <fcntl.h>
#include <limits.h>
#include <signal.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <string>

namespace catalogcore {

namespace {

OnCall armed = OnCall::kNothing;
int callsLeft = 0;
int errorOfCall = 0;
bool reached = false;
int flushes = 0;
int flushesBeforeRename = -1;
void (*onExistence)() = nullptr;
std::string stolen;  // a file that another writer is about to remove
int thief = -1;      // its descriptor

bool IsInterrupted() {
  if (armed != OnCall::kShorten || ++callsLeft % 5 != 0) return false;
  errno = EINTR;
  return true;
}

// Whether the call is to fail; errno is set then.
bool Fails() {
  if ((armed != OnCall::kFail && armed != OnCall::kKill) || callsLeft-- > 0 || reached) return false;
  reached = true;
  if (armed == OnCall::kKill) kill(getpid(), SIGKILL);
  errno = errorOfCall;
  return true;
}

size_t Shortened(size_t size) {
  if (armed != OnCall::kShorten) return size;
  reached = true;
  return std::min<size_t>(size, 7);
}

}  // namespace

void ArmCalls(OnCall what, int at, int error) {
  armed = what;
  callsLeft = at;
  errorOfCall = error;
  reached = false;
}

int FlushesBeforeRename(void (*work)()) {
  flushes = 0;
  work();
  return flushesBeforeRename;
}

void OnExistence(void (*asked)()) { onExistence = asked; }

bool CallsWereReached() { return reached; }

extern "C" {
int __real_open(const char* path, int flags, mode_t mode);
int __real_openat(int folder, const char* path, int flags, mode_t mode);
ssize_t __real_read(int file, void* bytes, size_t size);
ssize_t __real_write(int file, const void* bytes, size_t size);
int __real_fsync(int file);
int __real_renameat(int fromFolder, const char* from, int toFolder, const char* to);
int __real_close(int file);
int __real_stat(const char* path, struct stat* status);
ssize_t __real_readlink(const char* path, char* text, size_t size);
int __real_flock(int file, int operation);
int __real_faccessat(int folder, const char* path, int mode, int flags);

static void RemoveStolen() {
  if (stolen.empty()) return;
  unlink(stolen.c_str());
  __real_close(thief);
  stolen.clear();
}

int __wrap_open(const char* path, int flags, mode_t mode) {
  return Fails() || IsInterrupted() ? -1 : __real_open(path, flags, mode);
}
int __wrap_openat(int folder, const char* path, int flags, mode_t mode) {
  return Fails() || IsInterrupted() ? -1 : __real_openat(folder, path, flags, mode);
}
ssize_t __wrap_read(int file, void* bytes, size_t size) {
  return Fails() || IsInterrupted() ? -1 : __real_read(file, bytes, Shortened(size));
}
ssize_t __wrap_write(int file, const void* bytes, size_t size) {
  RemoveStolen();
  return Fails() || IsInterrupted() ? -1 : __real_write(file, bytes, Shortened(size));
}
int __wrap_fsync(int file) {
  ++flushes;
  return Fails() || IsInterrupted() ? -1 : __real_fsync(file);
}
int __wrap_renameat(int fromFolder, const char* from, int toFolder, const char* to) {
  flushesBeforeRename = flushes;
  return Fails() ? -1 : __real_renameat(fromFolder, from, toFolder, to);
}
int __wrap_close(int file) {
  RemoveStolen();
  const int result = __real_close(file);
  return Fails() || IsInterrupted() ? -1 : result;
}
int __wrap_stat(const char* path, struct stat* status) { return Fails() ? -1 : __real_stat(path, status); }
ssize_t __wrap_readlink(const char* path, char* text, size_t size) {
  return Fails() ? -1 : __real_readlink(path, text, size);
}
int __wrap_flock(int file, int operation) {
  char path[PATH_MAX] = "";
  if (armed == OnCall::kSteal && callsLeft-- > 0) {
    reached = true;
    __real_readlink(("/proc/self/fd/" + std::to_string(file)).c_str(), path, sizeof path - 1);
    stolen = path;
    thief = __real_open(path, O_RDONLY | O_CLOEXEC, 0);
    __real_flock(thief, LOCK_EX);
  }
  return __real_flock(file, operation);
}
int __wrap_faccessat(int folder, const char* path, int mode, int flags) {
  if (onExistence) onExistence();
  return __real_faccessat(folder, path, mode, flags);
}
}

}  // namespace catalogcore
