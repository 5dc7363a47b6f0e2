// The tone curve that prepares a picture for analysis.
#ifndef CATALOGCORE_SCENE_TONE_CURVE_H_
#define CATALOGCORE_SCENE_TONE_CURVE_H_

#include <array>
#include <cstdint>

namespace catalogcore {

// The output for each of the 256 values of a byte.
using ToneTable = std::array<std::uint8_t, 256>;

// Gamma 1.8: entry i is 255 * (i / 255)^1.8, rounded to the nearest integer, halves up. The curve is
// monotonic and darkens the middle tones. The table is computed at compile time.
extern const ToneTable ka1DLUT;

}  // namespace catalogcore

#endif  // CATALOGCORE_SCENE_TONE_CURVE_H_
