#include "app/interrupt.h"

#include <unistd.h>

#include <cerrno>
#include <csignal>

namespace catalogcore::app {
namespace {

std::atomic<bool> isInterrupted{false};
std::string noticeLine;  // read by the handler: not changed once signals are caught
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may only touch lock-free atomics");

// Calls async-signal-safe functions alone.
void HandleInterrupt(int) {
  const int error = errno;
  if (!isInterrupted.exchange(true)) {
    const ssize_t written = write(STDERR_FILENO, noticeLine.data(), noticeLine.size());
    static_cast<void>(written);  // whoever does not listen misses it
  }
  errno = error;
}

}  // namespace

const std::atomic<bool>& CatchInterrupts(const std::string& notice) {
  const bool isOnTerminal = isatty(STDERR_FILENO) != 0;
  noticeLine = (isOnTerminal ? "\r\x1B[Kcatalogcore: " : "catalogcore: ") + notice + '\n';
  struct sigaction action {};
  action.sa_handler = HandleInterrupt;
  action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);  // nohup, or a shell's background
  }
  return isInterrupted;
}

}  // namespace catalogcore::app
