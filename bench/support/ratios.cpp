#include "bench/support/ratios.h"

#include <benchmark/benchmark.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <vector>

namespace catalogcore {

namespace {

// The rows that were added; their medians are yet to come.
std::vector<Ratio>& Rows() {
  static std::vector<Ratio> rows;
  return rows;
}

// Measures one round, and prints a line at once if it took long, preparations included.
double Timed(const std::string& name, const Round& round) {
  constexpr double kLong = 5e9;
  double measured = 0;
  const double taken = Time(1, [&] { measured = round(); });
  if (taken >= kLong) std::fprintf(stderr, "  %s: a round of %.0f s\n", name.c_str(), taken * 1e-9);
  return measured;
}

void Register(const std::string& name, Round round, int rounds) {
  benchmark::RegisterBenchmark(name.c_str(),
                               [name, round = std::move(round)](benchmark::State& state) {
                                 for ([[maybe_unused]] auto _ : state) {
                                   state.SetIterationTime(Timed(name, round) * 1e-9);
                                 }
                               })
      ->UseManualTime()
      ->Iterations(1)
      ->Repetitions(rounds)
      ->ReportAggregatesOnly();
}

// One line for each side of a row when it is done; keeps the medians by name.
class KeepingReporter : public benchmark::BenchmarkReporter {
 public:
  bool ReportContext(const Context&) override { return true; }

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) {
      // What was measured once has no median.
      if (run.repetitions > 1 && run.aggregate_name != "median") continue;
      medians_[run.run_name.function_name] = run.GetAdjustedRealTime();
      std::printf("  %-44s %14.1f\n", run.run_name.function_name.c_str(), run.GetAdjustedRealTime());
      std::fflush(stdout);
    }
  }

  const double* Median(const std::string& name) const {
    const auto found = medians_.find(name);
    return found == medians_.end() ? nullptr : &found->second;
  }

 private:
  std::map<std::string, double> medians_;
};

}  // namespace

void AddRow(const std::string& name, Round ours, const std::string& alternative, Round other, int rounds,
            const std::string& unit) {
  Rows().push_back({name, alternative, unit});
  Register(name + "/ours", std::move(ours), rounds);
  Register(name + "/" + alternative, std::move(other), rounds);
}

int RunRows(int argc, char** argv, const std::string& file, std::vector<Ratio>& results) {
  std::vector<char*> arguments(argv, argv + argc);
  // In turn, so that what else the machine does weighs on both sides alike.
  char interleaved[] = "--benchmark_enable_random_interleaving=true";
  arguments.push_back(interleaved);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 2;
  KeepingReporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);

  nlohmann::json rows = nlohmann::json::parse(std::ifstream(file), nullptr, false);
  if (!rows.is_array()) rows = nlohmann::json::array();
  std::printf("\n%-28s | %16s | %16s %-18s | %s\n", "what", "ours", "", "alternative", "ratio");
  for (const Ratio& added : Rows()) {
    const double* const ours = reporter.Median(added.name + "/ours");
    const double* const other = reporter.Median(added.name + "/" + added.alternative);
    if (!ours || !other) continue;
    const double ratio = *ours / *other;
    std::printf("%-28s | %13.1f %-2s | %13.1f %-2s %-18s | %.3f\n", added.name.c_str(), *ours, added.unit.c_str(),
                *other, added.unit.c_str(), added.alternative.c_str(), ratio);
    rows.push_back({{"name", added.name},
                    {"alternative", added.alternative},
                    {"unit", added.unit},
                    {"ours", *ours},
                    {"other", *other},
                    {"ratio", ratio}});
  }
  for (const nlohmann::json& row : rows) {
    results.push_back({row["name"], row["alternative"], row["unit"], row["ours"], row["other"]});
  }
  std::ofstream out(file);
  out << rows.dump(2) << '\n';
  out.close();
  if (!out) std::fprintf(stderr, "catalogcore_bench: cannot write %s\n", file.c_str());
  return out ? 0 : 1;
}

}  // namespace catalogcore
