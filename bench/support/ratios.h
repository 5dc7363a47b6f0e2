// Benchmarks in pairs: what we do and what a user would otherwise take, measured in one run.
#ifndef CATALOGCORE_BENCH_SUPPORT_RATIOS_H_
#define CATALOGCORE_BENCH_SUPPORT_RATIOS_H_

#include <chrono>
#include <functional>
#include <string>

// One round of a measurement: does its work, preparations included, and returns the nanoseconds that one operation
// took.
using Round = std::function<double()>;

// Adds a row to the table of ratios. The rounds of both sides are run in turn, `rounds` of each; their medians count.
void AddRow(const std::string& name, Round ours, const std::string& alternative, Round other, int rounds = 9);

// Runs every row, prints them, and adds them to the file, a list of {"name","ours","other","ratio"}, times in
// nanoseconds, ratio = ours / other. Arguments are Google Benchmark's; a filter picks rows by name. Returns the exit
// status.
int RunRows(int argc, char** argv, const std::string& file);

// The nanoseconds that `work` takes for each of `operations`.
template <typename Work>
double Time(double operations, Work work) {
  const auto begin = std::chrono::steady_clock::now();
  work();
  const std::chrono::duration<double, std::nano> taken = std::chrono::steady_clock::now() - begin;
  return taken.count() / operations;
}

#endif  // CATALOGCORE_BENCH_SUPPORT_RATIOS_H_
