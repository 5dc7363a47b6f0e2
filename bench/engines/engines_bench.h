// Benchmarks of the two engines.
#ifndef CATALOGCORE_BENCH_ENGINES_ENGINES_BENCH_H_
#define CATALOGCORE_BENCH_ENGINES_ENGINES_BENCH_H_

namespace catalogcore {

void AddFaceRows();
void AddRecognizerRows();

}  // namespace catalogcore

#endif  // CATALOGCORE_BENCH_ENGINES_ENGINES_BENCH_H_
