// Which source positions make up each target position along one axis, and with what weight: the area that a
// target pixel covers where the axis shrinks, linear interpolation where it grows.
#ifndef CATALOGCORE_ENGINES_FACES_RESAMPLING_TAPS_H_
#define CATALOGCORE_ENGINES_FACES_RESAMPLING_TAPS_H_

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace catalogcore::faces {

constexpr unsigned kTapUnit = 256;  // the sum of every target position's weights

struct Taps {
  std::size_t first;                       // the source position of the first weight
  std::span<const std::uint16_t> weights;  // at least one
};

class ResamplingTaps {
 public:
  // REQUIRES: both lengths are positive.
  ResamplingTaps(std::size_t sourceLength, std::size_t targetLength);

  Taps At(std::size_t target) const {
    const std::size_t begin = begins_[target];
    return {firsts_[target], {weights_.data() + begin, begins_[target + 1] - begin}};
  }

 private:
  void AddArea(double begin, double end, std::size_t sourceLength);
  void AddLinear(double centre, std::size_t sourceLength);

  std::vector<std::size_t> firsts_;
  std::vector<std::size_t> begins_;  // into weights_, one more than there are target positions
  std::vector<std::uint16_t> weights_;
};

}  // namespace catalogcore::faces

#endif  // CATALOGCORE_ENGINES_FACES_RESAMPLING_TAPS_H_
