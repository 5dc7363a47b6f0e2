// Finding faces in a grey picture. This is the only part that knows what the search is built on.
#ifndef CATALOGCORE_ENGINES_FACES_FACE_SEARCH_H_
#define CATALOGCORE_ENGINES_FACES_FACE_SEARCH_H_

#include <vector>

#include "engines/faces/face.h"
#include "engines/faces/grey_picture.h"

namespace catalogcore::faces {

// Makes the detector, once in a process; it takes longer than a search. A search makes it too if nobody did
// before. Throws what making it throws, and then tries again when called again.
void PrepareFaceSearch();

// The faces in the picture, in its pixels, the one that answered most surely first; they may reach beyond its
// border. Any thread may search, also several at once. Throws std::bad_alloc and what the detector throws.
std::vector<OrloFace> FindFaces(const GreyView& picture);

}  // namespace catalogcore::faces

#endif  // CATALOGCORE_ENGINES_FACES_FACE_SEARCH_H_
