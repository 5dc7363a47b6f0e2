// The store beside std::unordered_map and SQLite in memory.
#ifndef CATALOGCORE_BENCH_STORE_STORE_BENCH_H_
#define CATALOGCORE_BENCH_STORE_STORE_BENCH_H_

void AddStoreRows();

#endif  // CATALOGCORE_BENCH_STORE_STORE_BENCH_H_
