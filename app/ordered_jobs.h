// Parallel work whose results are used in order.
#ifndef CATALOGCORE_APP_ORDERED_JOBS_H_
#define CATALOGCORE_APP_ORDERED_JOBS_H_

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <exception>
#include <map>
#include <mutex>
#include <thread>
#include <vector>

namespace catalogcore::app {

// Calls `work(i)` for i = 0 to count - 1 on `jobs` threads and `take(i, result)` on the calling thread, i ascending. The
// threads keep at most kRoundsAhead results a thread that are not taken yet. When `stop` becomes true no further call of
// `work` begins; those under way finish and their results are taken. Returns the number of results taken. An exception of
// `work` or `take` ends the work and is thrown again.
template <typename Work, typename Take>
std::size_t RunInOrder(std::size_t count, unsigned jobs, const std::atomic<bool>& stop, Work work, Take take) {
  using Output = decltype(work(std::size_t{}));
  constexpr std::size_t kRoundsAhead = 16;
  const std::size_t threadCount = std::min<std::size_t>(std::max(jobs, 1U), count);
  std::mutex mutex;
  std::condition_variable changed;
  std::map<std::size_t, Output> done;  // not taken yet
  std::size_t next = 0;
  std::size_t taken = 0;
  std::size_t running = threadCount;
  std::exception_ptr failure;

  const auto begin = [&](std::unique_lock<std::mutex>& lock, std::size_t& i) {
    changed.wait(lock, [&] { return failure || next < taken + kRoundsAhead * threadCount; });
    if (failure || stop || next == count) return false;
    i = next++;
    return true;
  };
  const auto run = [&] {
    std::unique_lock lock(mutex);
    try {
      for (std::size_t i = 0; begin(lock, i);) {
        lock.unlock();
        Output result = work(i);
        lock.lock();
        done.emplace(i, std::move(result));
        changed.notify_all();
      }
    } catch (...) {
      if (!lock.owns_lock()) lock.lock();
      if (!failure) failure = std::current_exception();
    }
    --running;
    changed.notify_all();
  };

  std::vector<std::thread> threads;
  {
    std::unique_lock lock(mutex);
    try {
      for (std::size_t i = 0; i < threadCount; ++i) threads.emplace_back(run);
    } catch (...) {
      failure = std::current_exception();
    }
    for (;;) {
      changed.wait(lock, [&] { return failure || done.count(taken) != 0 || running == 0; });
      if (failure || done.count(taken) == 0) break;
      Output result = std::move(done.extract(taken).mapped());
      lock.unlock();
      try {
        take(taken, std::move(result));
      } catch (...) {
        lock.lock();
        failure = std::current_exception();
        break;
      }
      lock.lock();
      ++taken;
      changed.notify_all();
    }
    changed.notify_all();
  }
  for (std::thread& thread : threads) thread.join();
  if (failure) std::rethrow_exception(failure);
  return taken;
}

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_ORDERED_JOBS_H_
