// Makes the system calls of reading and replacing a file fail, or the process end, at a chosen one.
#ifndef CATALOGCORE_TESTS_PERSIST_FAILING_CALLS_H_
#define CATALOGCORE_TESTS_PERSIST_FAILING_CALLS_H_

namespace catalogcore {

enum class OnCall { kNothing, kFail, kKill, kShorten, kSteal };

// Does this, with this error, at the call number `at` (0: the next) of open, read, write, fsync, rename, close, stat and
// readlink; kShorten makes every read and write from there on one of a few bytes, and interrupts every fifth call. kSteal: another writer
// locks the next `at` files ahead of the writer that made them, and removes them later.
void ArmCalls(OnCall what, int at, int error = 0);

// How often `work` flushes before it renames.
int FlushesBeforeRename(void (*work)());

// Calls this each time that the existence of a file is asked for; null ends it.
void OnExistence(void (*asked)());

// Whether the call was reached since then.
bool CallsWereReached();

}  // namespace catalogcore

#endif  // CATALOGCORE_TESTS_PERSIST_FAILING_CALLS_H_
