#include <arm_neon.h>

#include "engines/network/convolution.h"

namespace catalogcore::network {
namespace {

struct NeonVector {
  static constexpr std::size_t kLanes = 4;
  static constexpr std::size_t kPixels = 4;
  using Sums = int32x4_t;
  using Weights = int16x4x2_t;  // the first weights of the pairs, then the second ones
  using Pair = int16x4_t;

  static int32x4_t LoadSums(const std::int32_t* from) { return vld1q_s32(from); }
  static int16x4x2_t LoadWeights(const std::int16_t* from) { return vld2_s16(from); }
  static int16x4_t LoadPair(const std::int16_t* from) {
    const int16x4_t first = vld1_dup_s16(from);
    return vld1_lane_s16(from + 1, first, 1);
  }
  static int32x4_t AddProducts(int32x4_t sums, int16x4x2_t weights, int16x4_t pair) {
    return vmlal_lane_s16(vmlal_lane_s16(sums, weights.val[0], pair, 0), weights.val[1], pair, 1);
  }
  static int32x4_t Shifted(int32x4_t sums, int shift) { return vshlq_s32(sums, vdupq_n_s32(-shift)); }
  static void Store(int32x4_t sums, std::int32_t* to) { vst1q_s32(to, sums); }
  static void StoreClamped(int32x4_t sums, std::int16_t maximum, std::int16_t* to) {
    vst1_s16(to, vmin_s16(vmax_s16(vqmovn_s32(sums), vdup_n_s16(0)), vdup_n_s16(maximum)));
  }
};

}  // namespace

void ConvolveRowNeon(const ConvolutionRow& row) { ConvolveRow<NeonVector>(row); }

}  // namespace catalogcore::network
