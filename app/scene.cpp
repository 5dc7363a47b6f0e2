#include "app/scene.h"

#include <new>

#include "app/picture.h"
#include "app/status_words.h"
#include "catalogcore.h"

namespace catalogcore::app {

Decision DecideScene(const std::string& file) {
  try {
    const Picture picture = DecodePicture(file);
    IDXDSDATA data{};
    data.pixels = picture.pixels.data();
    data.width = picture.width;
    data.height = picture.height;
    data.bitsPerPixel = picture.bitsPerPixel;
    data.rowBytes = picture.width * (picture.bitsPerPixel / 8);
    data.resolution = picture.resolution;
    const IDXSTATUS status = IDXDetectScene(&data);
    if (status != IDX_OK) return {-1, StatusWords(status)};
    // Only a picture without pixels stays undecided.
    return {data.presetIndex == -1 ? IDXPRESET_OTHER : data.presetIndex, ""};
  } catch (const PictureError& error) {
    return {-1, error.what()};
  } catch (const std::bad_alloc&) {
    return {-1, StatusWords(IDXERR_MEMORY)};
  }
}

}  // namespace catalogcore::app
