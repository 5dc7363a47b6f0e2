// A file's pixels on their way to the screen or to scene detection.
#ifndef CATALOGCORE_APP_PICTURE_PIXELS_H_
#define CATALOGCORE_APP_PICTURE_PIXELS_H_

#include "app/picture_file.h"

namespace catalogcore::app {

// The file's first picture upright, as Picture describes its samples, reduced until no side is above `side` and never
// enlarged. Its rows have to be taken from the top down. To be called inside UseLibvips.
//
// Memory stays bounded by about one picture: rows are decoded, converted and reduced as they are taken, and what must be
// turned is small by then. Where a decoder holds the whole picture instead, picture_limits.h bounds it. Throws PictureError
// for what is beyond those limits.
Image ReducedPixels(const PictureFile& file, VipsFailOn failOn, int side);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_PIXELS_H_
