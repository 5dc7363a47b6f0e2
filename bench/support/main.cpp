// catalogcore_bench RATIOS.json [Google Benchmark's arguments]
#include <cstdio>

#include "bench/engines/engines_bench.h"
#include "bench/persist/files_bench.h"
#include "bench/scene/reduce_bench.h"
#include "bench/store/store_bench.h"
#include "bench/support/ratios.h"

int main(int argc, char** argv) {
  if (argc < 2 || argv[1][0] == '-') {
    std::fprintf(stderr, "usage: catalogcore_bench RATIOS.json [--benchmark_filter=REGEX ...]\n");
    return 2;
  }
  AddStoreRows();
  AddFileRows();
  AddReduceRows();
  AddRecognizerRows();
  AddFaceRows();
  const char* const file = argv[1];
  argv[1] = argv[0];
  return RunRows(argc - 1, argv + 1, file);
}
