#include "engines/network/convolution.h"

namespace catalogcore::network {
namespace {

struct PlainVector {
  static constexpr std::size_t kLanes = 4;
  static constexpr std::size_t kPixels = 4;
  struct Sums {
    std::int32_t lanes[kLanes];
  };
  using Weights = const std::int16_t*;
  using Pair = const std::int16_t*;

  static Sums LoadSums(const std::int32_t* from) { return {from[0], from[1], from[2], from[3]}; }
  static Weights LoadWeights(const std::int16_t* from) { return from; }
  static Pair LoadPair(const std::int16_t* from) { return from; }
  static Sums AddProducts(Sums sums, Weights weights, Pair pair) {
    for (std::size_t i = 0; i < kLanes; ++i) {
      sums.lanes[i] += weights[2 * i] * pair[0];
      sums.lanes[i] += weights[2 * i + 1] * pair[1];
    }
    return sums;
  }
  static Sums Shifted(Sums sums, int shift) {
    for (std::int32_t& lane : sums.lanes) lane >>= shift;
    return sums;
  }
  static void Store(const Sums& sums, std::int32_t* to) {
    for (std::size_t i = 0; i < kLanes; ++i) to[i] = sums.lanes[i];
  }
  static void StoreClamped(const Sums& sums, std::int16_t maximum, std::int16_t* to) {
    for (std::size_t i = 0; i < kLanes; ++i) {
      const std::int32_t lane = sums.lanes[i];
      to[i] = static_cast<std::int16_t>(lane < 0 ? 0 : lane > maximum ? maximum : lane);
    }
  }
};

}  // namespace

void ConvolveRowPlain(const ConvolutionRow& row) { ConvolveRow<PlainVector>(row); }

}  // namespace catalogcore::network
