// The catalogue as a static page: a folder that a browser opens from disk, without a server and without a network.
//
// The folder holds
//   index.html, assets/        the page, the same for every catalogue
//   data.js                    the catalogue, see gallery_data.h
//   thumbs/ab/ab....jpg        thumbnails, see small_copies.h
//   previews/ab/ab....jpg      larger copies of pictures that browsers cannot show (TIFF, HEIF)
//   catalogcore-gallery.json   the facts of the pictures, see gallery_records.h; marks the folder as a gallery
#ifndef CATALOGCORE_APP_GALLERY_GALLERY_H_
#define CATALOGCORE_APP_GALLERY_GALLERY_H_

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "app/picture.h"

namespace catalogcore::app {

// The file that marks a folder as a gallery.
inline constexpr char kGalleryMark[] = "catalogcore-gallery.json";

struct GalleryIndex {
  std::int32_t number = 0;
  std::int32_t parent = 0;  // number of the parent; -1: top of the tree
  std::string name;
  std::string meaning;  // of a preset, "photographs that show faces"; else empty
};

struct GalleryImage {
  std::string path;        // absolute path of the file; unique
  std::int32_t index = 0;  // number of the index; an image of an unknown index is listed under "All pictures" only
  bool missing = false;    // the file is missing: shown with its facts of an earlier run
};

struct GalleryRequest {
  std::vector<GalleryIndex> indexes;  // parents before children, siblings in the order on the page
  std::vector<GalleryImage> images;   // in any order
  std::filesystem::path folder;       // created if it is missing
  // Files with paths of pictures are never more readable than this file. A missing file restricts nothing.
  std::filesystem::path catalogueFile;
  unsigned jobs = 1;  // threads that call the next two functions
  // As ReadPictureFacts and SmallCopy. May throw PictureError.
  std::function<PictureFacts(const std::filesystem::path& file)> readFacts;
  std::function<std::string(const std::filesystem::path& file, int side)> makeCopy;
  // Called on the caller's thread after each file that had to be opened; `total` is the number of these files.
  std::function<void(std::size_t done, std::size_t total, const std::string& file)> progress;
  // When it becomes true, no further file is opened and the page is written without the rest. May be null.
  const std::atomic<bool>* stop = nullptr;
};

struct GalleryReport {
  std::size_t made = 0;                                     // number of new thumbnails
  std::vector<std::pair<std::string, std::string>> failed;  // file and reason; shown without a thumbnail
};

// Writes the page into the folder. Keeps the valid files of an earlier run, also of an interrupted one, and removes the
// outdated ones. Removes no other files and does not follow links in the folder. A copy is never more readable than its
// picture. Each file is replaced as a whole, index.html last.
//
// Throws std::runtime_error if the folder cannot be written, holds other files and is not a gallery, or has a link in place
// of a folder of the gallery; std::bad_alloc; the exceptions of the request's functions other than PictureError.
GalleryReport WriteGallery(const GalleryRequest& request);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_GALLERY_GALLERY_H_
