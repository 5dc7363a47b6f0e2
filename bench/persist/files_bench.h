// The image file beside a file of SQLite's with the same rows.
#ifndef CATALOGCORE_BENCH_PERSIST_FILES_BENCH_H_
#define CATALOGCORE_BENCH_PERSIST_FILES_BENCH_H_

namespace catalogcore {

// Rows load_N and write_N, in nanoseconds an image. N is 10,000, 100,000 and 1,000,000, and what the environment has as
// CATALOGCORE_BENCH_IMAGES.
void AddFileRows();

}  // namespace catalogcore

#endif  // CATALOGCORE_BENCH_PERSIST_FILES_BENCH_H_
