// Finds faces in a grey picture. Only this part uses dlib.
#ifndef CATALOGCORE_ENGINES_FACES_FACE_SEARCH_H_
#define CATALOGCORE_ENGINES_FACES_FACE_SEARCH_H_

#include <vector>

#include "base/pixel_view.h"
#include "engines/faces/face.h"

namespace catalogcore::faces {

// Creates the detector unless it exists; this takes longer than a search. FindFaces calls it too. Throws what the
// creation throws; the next call then tries again.
void PrepareFaceSearch();

// The faces in the picture (rows without padding), in its pixels, highest confidence first. A face may reach beyond the
// border. Several threads may search at once. Throws std::bad_alloc and what the detector throws.
std::vector<OrloFace> FindFaces(const PixelView& picture);

}  // namespace catalogcore::faces

#endif  // CATALOGCORE_ENGINES_FACES_FACE_SEARCH_H_
