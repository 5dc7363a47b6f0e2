#include "tests/persist/failing_calls.h"

#include <fcntl.h>
#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>

namespace {

OnCall armed = OnCall::kNothing;
int callsLeft = 0;
bool reached = false;
int flushes = 0;
int flushesBeforeRename = -1;

// Whether the call is to fail; errno is set then.
bool Fails() {
  if (armed == OnCall::kNothing || armed == OnCall::kShorten || callsLeft-- > 0 || reached) return false;
  reached = true;
  if (armed == OnCall::kKill) kill(getpid(), SIGKILL);
  errno = ENOSPC;
  return true;
}

}  // namespace

void ArmCalls(OnCall what, int at) {
  armed = what;
  callsLeft = at;
  reached = false;
}

int FlushesBeforeRename(void (*work)()) {
  flushes = 0;
  work();
  return flushesBeforeRename;
}

bool CallsWereReached() { return reached; }

extern "C" {
int __real_open(const char* path, int flags, mode_t mode);
ssize_t __real_write(int file, const void* bytes, size_t size);
int __real_fsync(int file);
int __real_rename(const char* from, const char* to);
int __real_close(int file);

int __wrap_open(const char* path, int flags, mode_t mode) {
  return (flags & O_ACCMODE) == O_WRONLY && Fails() ? -1 : __real_open(path, flags, mode);
}
ssize_t __wrap_write(int file, const void* bytes, size_t size) {
  if (Fails()) return -1;
  if (armed == OnCall::kShorten) {
    reached = true;
    if (++callsLeft % 5 == 0) {
      errno = EINTR;
      return -1;
    }
    size = std::min<size_t>(size, 7);
  }
  return __real_write(file, bytes, size);
}
int __wrap_fsync(int file) {
  ++flushes;
  return Fails() ? -1 : __real_fsync(file);
}
int __wrap_rename(const char* from, const char* to) {
  flushesBeforeRename = flushes;
  return Fails() ? -1 : __real_rename(from, to);
}
int __wrap_close(int file) {
  const int result = __real_close(file);
  return Fails() ? -1 : result;
}
}
