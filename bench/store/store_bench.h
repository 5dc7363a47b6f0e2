// The store beside std::unordered_map and SQLite in memory, and its key table beside other tables.
#ifndef CATALOGCORE_BENCH_STORE_STORE_BENCH_H_
#define CATALOGCORE_BENCH_STORE_STORE_BENCH_H_

namespace catalogcore {

// 10,000, 100,000 and 1,000,000 images, and as many as the environment's CATALOGCORE_BENCH_IMAGES says.
void AddStoreRows();

// One million entries.
void AddKeyTableRows();

// Catalogues of unusual shapes (everything in one folder, in one index, each image in a folder of its own, folders of 50
// levels, folders of images of many indexes) beside one of as many images in folders of 3,000 and 20 indexes.
void AddShapeRows();

}  // namespace catalogcore

#endif  // CATALOGCORE_BENCH_STORE_STORE_BENCH_H_
