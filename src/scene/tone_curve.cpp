#include "scene/tone_curve.h"

namespace catalogcore {

namespace {

__extension__ using Wide = unsigned __int128;

consteval Wide Power(Wide base, int exponent) { return exponent == 0 ? 1 : base * Power(base, exponent - 1); }

// Whether 255 * (i / 255)^1.8 is at least n - 1/2. Raised to the fifth power, this compares integers, so the table does
// not depend on how a library rounds pow(). The largest number is below 2^78.
consteval bool RoundsTo(unsigned n, unsigned i) { return Power(2 * n - 1, 5) * Power(255, 4) <= 32 * Power(i, 9); }

consteval ToneTable GammaCurve() {
  ToneTable curve{};
  unsigned n = 0;
  for (unsigned i = 0; i < curve.size(); ++i) {
    while (RoundsTo(n + 1, i)) ++n;
    curve[i] = static_cast<std::uint8_t>(n);
  }
  return curve;
}

}  // namespace

constinit const ToneTable ka1DLUT = GammaCurve();

}  // namespace catalogcore
