// The reduction of a picture beside what a user would otherwise take for it.
#ifndef CATALOGCORE_BENCH_SCENE_REDUCE_BENCH_H_
#define CATALOGCORE_BENCH_SCENE_REDUCE_BENCH_H_

#include <functional>
#include <string>
#include <vector>

struct ReduceRow {
  std::string name;
  std::function<void()> ours;
  std::function<void()> other;
};

// Rows for a 4096 x 4096 picture with the tone curve, each side on one thread: reduce_F_BITS         by F at so many
// bits a pixel; the other is cv::resize with INTER_AREA, then cv::LUT reduce_F_BITS_memcpy  the same; the other copies
// the source Ours allocates its result every time, as its callers get it; the others write into memory that they keep.
std::vector<ReduceRow> ReduceRows();

#endif  // CATALOGCORE_BENCH_SCENE_REDUCE_BENCH_H_
