// The catalogue as a static page: a folder that a browser opens from disk, without a server and without the network.
//
// The folder holds
//   index.html, assets/                   the page, the same for every catalogue
//   data.js                               the catalogue, see gallery_data.h
//   thumbs/ab/ab....jpg                   thumbnails, named by the file's path, time of change and size
//   previews/ab/ab....jpg                 larger copies of what browsers cannot show (TIFF, HEIF)
//   catalogcore-gallery.json              what the files told when they were last read; marks the folder as a gallery
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

namespace catalogcore::app {

// The file that marks a folder as a gallery.
inline constexpr char kGalleryMark[] = "catalogcore-gallery.json";

class PicturePool;

struct GalleryIndex {
  std::int32_t number = 0;
  std::int32_t parent = 0;  // a number; -1: top of the tree
  std::string name;
  std::string meaning;  // what a preset holds, "photographs that show faces"; empty for others
};

struct GalleryImage {
  std::string path;        // full path of the file; no two are the same
  std::int32_t index = 0;  // a number; one that is not among the indexes shows under "All pictures" alone
  bool missing = false;    // the file is not there now: shown as a former run saw it
};

struct GalleryRequest {
  std::vector<GalleryIndex> indexes;  // parents before children, siblings in the order in which they are shown
  std::vector<GalleryImage> images;   // in any order
  std::filesystem::path folder;       // made if it is not there
  // The files that hold the paths of pictures are no more readable than this one. A missing file restricts nothing.
  std::filesystem::path catalogueFile;
  unsigned jobs = 1;                // threads that make thumbnails, 1 or more
  PicturePool* pictures = nullptr;  // what decodes the pictures; null: this process does
  // After each file that had to be opened, of `total` such files. One thread at a time, not always the caller's.
  std::function<void(std::size_t done, std::size_t total, const std::string& file)> progress;
  // Becomes true: no further file is opened, and the page is written with what there is. May be null.
  const std::atomic<bool>* stop = nullptr;
};

struct GalleryReport {
  std::size_t made = 0;  // pictures whose thumbnail was made now; those of the others were there
  std::vector<std::pair<std::string, std::string>> failed;  // file, why: shown without a thumbnail
};

// Writes the page into the folder. What a former run left there is used where it is still true and removed where it is
// not, also after a run that was interrupted. Nothing else is removed, and links in the folder are not followed. A copy is
// no more readable than its picture. Each file is the old or the new one, whole, and index.html comes last.
//
// Throws std::runtime_error when the folder cannot be written, holds something and is no gallery, or has a link in the
// place of a folder of the gallery's; std::bad_alloc; what request.progress throws. REQUIRES: StartPictures was called.
GalleryReport WriteGallery(const GalleryRequest& request);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_GALLERY_GALLERY_H_
