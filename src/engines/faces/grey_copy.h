// The grey copy of a picture at the size at which faces are looked for.
#ifndef CATALOGCORE_ENGINES_FACES_GREY_COPY_H_
#define CATALOGCORE_ENGINES_FACES_GREY_COPY_H_

#include "engines/faces/grey_picture.h"
#include "engines/faces/source_picture.h"

namespace catalogcore::faces {

// The size of the grey copy: the picture's proportions at kWorkingArea pixels, but never enlarged more than
// kMaxEnlargement times. By area, not by a side, so that the search takes the same time whatever the
// proportions.
PictureSize WorkingSize(const PictureSize& source);

// Writes the picture at `size` into `target`, size.Area() bytes: areas averaged where an axis shrinks, linear
// interpolation where it grows. A colour pixel's grey is (first + 2 * second + third) / 4: which end of the
// three samples is red is not known. Of 16-bit samples the high byte counts. Throws std::bad_alloc.
void MakeGreyCopy(const SourcePicture& source, const PictureSize& size, std::uint8_t* target);

}  // namespace catalogcore::faces

#endif  // CATALOGCORE_ENGINES_FACES_GREY_COPY_H_
