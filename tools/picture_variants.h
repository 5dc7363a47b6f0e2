// Variants of a training picture, as scanners, cameras and applications produce them.
#ifndef CATALOGCORE_TOOLS_PICTURE_VARIANTS_H_
#define CATALOGCORE_TOOLS_PICTURE_VARIANTS_H_

#include <cstdint>

#include "tools/raster.h"

namespace catalogcore::tools {

// A4's long side, in inches.
inline constexpr double kPageLength = 11.69;

// The library refuses pictures with a longer side.
inline constexpr double kLongestSide = 4096;

// Variant `number` of the picture. The same arguments give the same bytes. `seed` differs from picture to picture.
SourcePicture MakeVariant(const Raster& original, bool isDocument, std::uint64_t seed, std::uint64_t number);

}  // namespace catalogcore::tools

#endif  // CATALOGCORE_TOOLS_PICTURE_VARIANTS_H_
