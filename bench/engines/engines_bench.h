// The two engines beside what their work is measured by.
#ifndef CATALOGCORE_BENCH_ENGINES_ENGINES_BENCH_H_
#define CATALOGCORE_BENCH_ENGINES_ENGINES_BENCH_H_

void AddFaceRows();
void AddRecognizerRows();

#endif  // CATALOGCORE_BENCH_ENGINES_ENGINES_BENCH_H_
