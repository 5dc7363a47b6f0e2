// Makes a chosen system call of a read or a write fail, or kills the process there.
#ifndef CATALOGCORE_TESTS_PERSIST_FAILING_CALLS_H_
#define CATALOGCORE_TESTS_PERSIST_FAILING_CALLS_H_

namespace catalogcore {

enum class OnCall { kNothing, kFail, kKill, kShorten, kSteal };

// Arms call number `at` (0: the next) of the wrapped system calls. kFail: the call fails with the error. kKill: the
// process is killed there. kShorten: from now on every read and write is of a few bytes, and every fifth call is
// interrupted. kSteal: another writer locks the next `at` new files before their own writer, and removes them later.
void ArmCalls(OnCall what, int at, int error = 0);

// The number of flushes before the rename in `work`.
int FlushesBeforeRename(void (*work)());

// Sets a function that every check for a file in an open folder calls; null for none.
void OnExistence(void (*asked)());

// Whether the armed call was reached.
bool CallsWereReached();

}  // namespace catalogcore

#endif  // CATALOGCORE_TESTS_PERSIST_FAILING_CALLS_H_
