// Ctrl-C and its like: the first asks to stop, which the work under way looks at; the second ends the process.
#ifndef CATALOGCORE_APP_INTERRUPT_H_
#define CATALOGCORE_APP_INTERRUPT_H_

#include <atomic>

namespace catalogcore::app {

// From now on, SIGINT, SIGTERM and SIGHUP set the flag that is returned.
const std::atomic<bool>& CatchInterrupts();

// What a process that was asked to stop exits with: 128 + SIGINT, as shells have it.
inline constexpr int kInterruptedStatus = 130;

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_INTERRUPT_H_
