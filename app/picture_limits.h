// Limits on the cost of a picture, checked on its header before any pixel is decoded, and the rule for a picture without
// its end.
#ifndef CATALOGCORE_APP_PICTURE_LIMITS_H_
#define CATALOGCORE_APP_PICTURE_LIMITS_H_

#include "app/picture_file.h"

namespace catalogcore::app {

// Throws PictureError, which names the limit. `header` is the header of the file at full size. REQUIRES: inside UseLibvips.
void RefuseBeyondLimits(const PictureFile& file, VipsImage* header);

// Whether at least half of the rows of a JPEG file can be decoded, or the first of several passes. False for other
// formats: their decoders return nothing or unreliable pixels for an incomplete file.
bool HasMostOf(const PictureFile& file);

// As UseLibvips. Calls work(VIPS_FAIL_ON_NONE) for a file without its end if HasMostOf(file).
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
