// What a picture may cost to decode, checked on its header before any pixel is decoded, and what is decoded of a picture
// whose end is missing.
#ifndef CATALOGCORE_APP_PICTURE_LIMITS_H_
#define CATALOGCORE_APP_PICTURE_LIMITS_H_

#include "app/picture_file.h"

namespace catalogcore::app {

// Throws PictureError, which names the limit. `header` is the file's, at full size. To be called inside UseLibvips.
void RefuseBeyondLimits(const PictureFile& file, VipsImage* header);

// Whether at least half of the rows of a JPEG file can be decoded, or the first of several passes. False for other
// files: their decoders give nothing of a part, or a part that cannot be trusted.
bool HasMostOf(const PictureFile& file);

// As UseLibvips; work(VIPS_FAIL_ON_NONE) once more for a file whose end alone is missing.
template <typename Work>
auto UseMostOf(const PictureFile& file, const Work& work) {
  try {
    return UseLibvips(file, work);
  } catch (const CutShort&) {
    if (!HasMostOf(file)) throw;
  }
  try {
    const LibvipsUse use(false);
    return work(VIPS_FAIL_ON_NONE);
  } catch (const LibvipsFailure&) {
    throw CutShort();
  }
}

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_LIMITS_H_
