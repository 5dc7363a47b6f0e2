// The resolution that a picture's file states.
#ifndef CATALOGCORE_APP_PICTURE_RESOLUTION_H_
#define CATALOGCORE_APP_PICTURE_RESOLUTION_H_

#include <cstdint>

#include "app/picture_file.h"

namespace catalogcore::app {

// Dots per inch that a scanner could have meant; 0: none. `header` is the file's, at full size.
std::int32_t StatedResolution(const PictureFile& file, VipsImage* header);

// The text that libvips makes of a field of EXIF ("exif-ifd2-FNumber"); empty if there is none.
std::string ExifText(VipsImage* header, const char* field);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_RESOLUTION_H_
