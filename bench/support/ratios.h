// Benchmarks in pairs: what we do and what a user would otherwise take, measured in one run.
#ifndef CATALOGCORE_BENCH_SUPPORT_RATIOS_H_
#define CATALOGCORE_BENCH_SUPPORT_RATIOS_H_

#include <time.h>

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace catalogcore {

// One round of a measurement: does its work, preparations included, and returns the nanoseconds that one operation
// took, or what else the row's unit says.
using Round = std::function<double()>;

struct Ratio {
  std::string name, alternative, unit;
  double ours = 0, other = 0;  // medians
};

// Adds a row to the table of ratios. The rounds of both sides are run in turn, `rounds` of each; their medians count.
void AddRow(const std::string& name, Round ours, const std::string& alternative, Round other, int rounds = 9,
            const std::string& unit = "ns");

// Runs every row, prints them, and adds them to the file, a list of {"name","alternative","unit","ours","other","ratio"},
// ratio = ours / other. Arguments are Google Benchmark's; a filter picks rows by name. Returns the exit status; `results`
// gets all rows of the file.
int RunRows(int argc, char** argv, const std::string& file, std::vector<Ratio>& results);

// The nanoseconds of this thread that `work` takes for each of `operations`: what else runs on the machine takes none.
template <typename Work>
double ThreadTime(double operations, Work work) {
  const auto now = [] {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e9 + static_cast<double>(time.tv_nsec);
  };
  const double begin = now();
  work();
  return (now() - begin) / operations;
}

// The nanoseconds that `work` takes for each of `operations`.
template <typename Work>
double Time(double operations, Work work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - begin;
  return taken.count() / operations;
}

}  // namespace catalogcore

#endif  // CATALOGCORE_BENCH_SUPPORT_RATIOS_H_
