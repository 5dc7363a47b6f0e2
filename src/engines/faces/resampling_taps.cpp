#include "engines/faces/resampling_taps.h"

#include <algorithm>
#include <cmath>

namespace catalogcore::faces {
namespace {

std::uint16_t InTapUnits(double share) { return static_cast<std::uint16_t>(std::lround(share * kTapUnit)); }

}  // namespace

ResamplingTaps::ResamplingTaps(std::size_t sourceLength, std::size_t targetLength) {
  const double step = static_cast<double>(sourceLength) / static_cast<double>(targetLength);
  firsts_.reserve(targetLength);
  begins_.reserve(targetLength + 1);
  begins_.push_back(0);
  for (std::size_t target = 0; target < targetLength; ++target) {
    const double begin = static_cast<double>(target) * step;
    if (step > 1) {
      AddArea(begin, begin + step, sourceLength);
    } else {
      AddLinear(begin + step / 2, sourceLength);
    }
    begins_.push_back(weights_.size());
  }
}

// Rounds the running sum rather than each weight, so that the weights add up whatever the step.
void ResamplingTaps::AddArea(double begin, double end, std::size_t sourceLength) {
  const auto first = std::min(static_cast<std::size_t>(begin), sourceLength - 1);
  const auto last = std::clamp(static_cast<std::size_t>(std::ceil(end)), first + 1, sourceLength);
  firsts_.push_back(first);
  std::uint16_t sum = 0;
  for (std::size_t source = first; source < last; ++source) {
    const double covered = std::min(end, static_cast<double>(source + 1)) - begin;
    const std::uint16_t upToHere = source + 1 == last ? kTapUnit : InTapUnits(covered / (end - begin));
    weights_.push_back(static_cast<std::uint16_t>(upToHere - sum));
    sum = upToHere;
  }
}

void ResamplingTaps::AddLinear(double centre, std::size_t sourceLength) {
  const double position = std::clamp(centre - 0.5, 0.0, static_cast<double>(sourceLength - 1));
  const auto first = static_cast<std::size_t>(position);
  firsts_.push_back(first);
  const std::uint16_t second = InTapUnits(position - static_cast<double>(first));
  weights_.push_back(static_cast<std::uint16_t>(kTapUnit - second));
  if (second > 0) weights_.push_back(second);
}

}  // namespace catalogcore::faces
