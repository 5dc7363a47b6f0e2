// data.js: the catalogue as one constant of the page's script.
//
//   const CATALOGUE = JSON.parse("...");
//
// The text is ASCII; other characters are escaped. The pictures are sorted by folder and name, a folder directly before the
// folders below it, so the pictures in and below a folder are one range. `names`, `filed`, `widths`, `heights`,
// `resolutions`, `dates`, `states` and `copies` have one entry a picture:
//   indexes  [[number, position of the parent or -1, name, meaning], ...]   parents before children
//   folders  ["/home/anna/Pictures/", ...]    sorted, each with a slash at its end
//   starts   number of the first picture of each folder
//   names    names of the files
//   filed    position in `indexes`, or -1
//   widths, heights, resolutions              0: unknown
//   dates    20240531182005; 0: unknown
//   states   one string, one digit a picture: the sum of 1 missing, 2 has a thumbnail, 4 has a preview
//   copies   one string, 16 digits a picture: the name of its thumbnail and preview; 0: none
#ifndef CATALOGCORE_APP_GALLERY_GALLERY_DATA_H_
#define CATALOGCORE_APP_GALLERY_GALLERY_DATA_H_

#include <string>
#include <vector>

#include "app/gallery/gallery.h"
#include "app/gallery/gallery_records.h"

namespace catalogcore::app {

// The content of data.js. `records` has the record of each image at the image's position.
std::string GalleryData(const std::vector<GalleryIndex>& indexes, const std::vector<GalleryImage>& images,
                        const std::vector<GalleryRecord>& records);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_GALLERY_GALLERY_DATA_H_
