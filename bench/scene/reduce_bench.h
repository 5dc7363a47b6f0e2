// The reduction of a picture of 4096 x 4096 with the tone curve, compared with OpenCV and with copying the source.
#ifndef CATALOGCORE_BENCH_SCENE_REDUCE_BENCH_H_
#define CATALOGCORE_BENCH_SCENE_REDUCE_BENCH_H_

namespace catalogcore {

// Adds rows reduce_F_BITS and reduce_F_BITS_memcpy, for the factors 2, 4 and 8 and for 8 and 24 bits a pixel.
void AddReduceRows();

}  // namespace catalogcore

#endif  // CATALOGCORE_BENCH_SCENE_REDUCE_BENCH_H_
