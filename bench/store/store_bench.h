// The store beside std::unordered_map and SQLite in memory, its key table beside other tables, and itself beside a store
// a tenth as large.
#ifndef CATALOGCORE_BENCH_STORE_STORE_BENCH_H_
#define CATALOGCORE_BENCH_STORE_STORE_BENCH_H_

// 10,000, 100,000 and 1,000,000 images, and as many as the environment's CATALOGCORE_BENCH_IMAGES says.
void AddStoreRows();

// One million entries.
void AddKeyTableRows();

// Catalogues of one shape, each beside one of the same shape with a tenth of the images: linear is a ratio of 1, as far
// as the memory's caches go.
void AddShapeRows();

#endif  // CATALOGCORE_BENCH_STORE_STORE_BENCH_H_
