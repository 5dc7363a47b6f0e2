#include "app/interrupt.h"

#include <csignal>

namespace catalogcore::app {
namespace {

std::atomic<bool> isInterrupted{false};
static_assert(std::atomic<bool>::is_always_lock_free, "a signal handler may only touch lock-free atomics");

}  // namespace

const std::atomic<bool>& CatchInterrupts() {
  struct sigaction action {};
  action.sa_handler = [](int) { isInterrupted = true; };
  action.sa_flags = static_cast<int>(SA_RESETHAND) | SA_RESTART;
  for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
    struct sigaction before {};
    sigaction(signal, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(signal, &action, nullptr);  // nohup, or a shell's background
  }
  return isInterrupted;
}

}  // namespace catalogcore::app
