// catalogcore_bench RATIOS.json [Google Benchmark's arguments]: also draws performance.svg beside RATIOS.json.
#include <cstdio>
#include <filesystem>
#include <string>

#include "bench/engines/engines_bench.h"
#include "bench/persist/files_bench.h"
#include "bench/scene/reduce_bench.h"
#include "bench/store/store_bench.h"
#include "bench/support/plot.h"
#include "bench/support/ratios.h"

using namespace catalogcore;

int main(int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') {
    std::fprintf(stderr, "usage: catalogcore_bench RATIOS.json [--benchmark_filter=REGEX ...]\n");
    return 2;
  }
  AddStoreRows();
  AddKeyTableRows();
  AddShapeRows();
  AddFileRows();
  AddReduceRows();
  AddRecognizerRows();
  AddFaceRows();
  const char* const file = argv[1];
  argv[1] = argv[0];
  std::vector<Ratio> results;
  const int status = RunRows(argc - 1, argv + 1, file, results);
  if (status != 0) return status;
  const std::string plot = std::filesystem::path(file).replace_filename("performance.svg");
  if (WritePlot(results, {"lookup", "add", "add_sqlite", "walk_index", "walk_folder", "move", "remove"}, plot))
    return 0;
  std::fprintf(stderr, "catalogcore_bench: cannot write %s\n", plot.c_str());
  return 1;
}
