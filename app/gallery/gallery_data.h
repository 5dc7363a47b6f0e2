// data.js: the catalogue for the page, as one constant.
//
//   const CATALOGUE = JSON.parse("...");
//
// The text is ASCII; whatever a name holds is escaped in it. Pictures stand in the order of their folders, a folder right
// before what is below it, and of their names; so what is in and below a folder is one range. For each picture there is
// an entry in every array of its kind:
//   indexes  [[number, position of the parent or -1, name, meaning], ...]   parents before children
//   folders  ["/home/anna/Pictures/", ...]    in their order, each with the slash at its end
//   starts   number of the first picture of each folder
//   names    names of the files
//   filed    position in `indexes`, or -1
//   widths, heights, resolutions              0: unknown, or none
//   dates    20240531182005; 0: unknown
//   states   one string, one digit a picture: 1 missing, 2 has a thumbnail, 4 has a preview, added up
//   copies   one string, 16 digits a picture: the name of its thumbnail and preview; zeros: none
#ifndef CATALOGCORE_APP_GALLERY_GALLERY_DATA_H_
#define CATALOGCORE_APP_GALLERY_GALLERY_DATA_H_

#include <string>
#include <vector>

#include "app/gallery/gallery.h"
#include "app/gallery/gallery_records.h"

namespace catalogcore::app {

// The script. `records` holds one record for each of the images.
std::string GalleryData(const std::vector<GalleryIndex>& indexes, const std::vector<GalleryImage>& images,
                        const std::vector<PictureRecord>& records);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_GALLERY_GALLERY_DATA_H_
