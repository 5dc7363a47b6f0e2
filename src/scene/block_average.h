// Reduces a picture by a whole number, averaging blocks of pixels.
#ifndef CATALOGCORE_SCENE_BLOCK_AVERAGE_H_
#define CATALOGCORE_SCENE_BLOCK_AVERAGE_H_

#include <cstdint>

#include "base/pixel_view.h"
#include "scene/tone_curve.h"

namespace catalogcore {

// The blocks of one row of the reduced picture.
struct BlockGrid {
  std::int32_t columns;        // blocks in a row
  std::int32_t factor;         // pixels on a block's side, 1 or more
  std::int32_t bytesPerPixel;  // 0 or more
};

// Writes each block of factor x factor pixels as one pixel: the average of each byte position, truncated to an integer
// and mapped through `tones`. Sets the rest of each target row to 0. Allocates nothing. REQUIRES: the source has factor
// rows for every row of the target and columns * factor pixels in a row, the target's stride holds columns pixels, and
// a block has fewer than 2^24 pixels.
void AverageBlocks(const PixelView& source, const BlockGrid& grid, const ToneTable& tones,
                   const MutablePixelView& target);

}  // namespace catalogcore

#endif  // CATALOGCORE_SCENE_BLOCK_AVERAGE_H_
