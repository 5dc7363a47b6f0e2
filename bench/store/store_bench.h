// Compares the store with std::unordered_map and SQLite in memory, and its key table with other hash tables.
#ifndef CATALOGCORE_BENCH_STORE_STORE_BENCH_H_
#define CATALOGCORE_BENCH_STORE_STORE_BENCH_H_

namespace catalogcore {

// Measures catalogues of 10,000, 100,000 and 1,000,000 images, and of CATALOGCORE_BENCH_IMAGES (an environment
// variable).
void AddStoreRows();

// Measures tables of one million entries.
void AddKeyTableRows();

// Compares catalogues of unusual shapes (one folder, one index, a folder for each image, folders of 50 levels, folders
// with images of many indexes) with a catalogue of the same size in folders of 3,000 images and 20 indexes.
void AddShapeRows();

}  // namespace catalogcore

#endif  // CATALOGCORE_BENCH_STORE_STORE_BENCH_H_
