// Ctrl-C and its like: the first asks to stop, which the work under way looks at; the second ends the process.
#ifndef CATALOGCORE_APP_INTERRUPT_H_
#define CATALOGCORE_APP_INTERRUPT_H_

#include <atomic>
#include <csignal>
#include <string>

namespace catalogcore::app {

// From now on, SIGINT, SIGTERM and SIGHUP set the flag that is returned, but for those that the process ignores. The
// first prints "catalogcore: NOTICE" on standard error at once.
const std::atomic<bool>& CatchInterrupts(const std::string& notice);

// While it lives, nobody reading the output (any more) is no reason to end.
class IgnoredPipes {
 public:
  IgnoredPipes() : before_(std::signal(SIGPIPE, SIG_IGN)) {}
  IgnoredPipes(const IgnoredPipes&) = delete;
  IgnoredPipes& operator=(const IgnoredPipes&) = delete;
  ~IgnoredPipes() { std::signal(SIGPIPE, before_); }

 private:
  void (*before_)(int);
};

// What a process that was asked to stop exits with: 128 + SIGINT, as shells have it.
inline constexpr int kInterruptedStatus = 130;

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_INTERRUPT_H_
