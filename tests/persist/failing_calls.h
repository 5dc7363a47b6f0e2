// Makes the system calls of a replacement fail, or the process end, at a chosen one.
#ifndef CATALOGCORE_TESTS_PERSIST_FAILING_CALLS_H_
#define CATALOGCORE_TESTS_PERSIST_FAILING_CALLS_H_

enum class OnCall { kNothing, kFail, kKill, kShorten };

// Does this at the call number `at` (0: the next) of open for writing, write, fsync, rename and close; kShorten makes
// every write from there on one of a few bytes, now and then interrupted.
void ArmCalls(OnCall what, int at);

// How often `work` flushes before it renames.
int FlushesBeforeRename(void (*work)());

// Whether the call was reached since then.
bool CallsWereReached();

#endif  // CATALOGCORE_TESTS_PERSIST_FAILING_CALLS_H_
