// The facts of each picture of a gallery, kept from one run to the next so that an unchanged file is not opened again.
// Their file, catalogcore-gallery.json, marks the folder as a gallery.
#ifndef CATALOGCORE_APP_GALLERY_GALLERY_RECORDS_H_
#define CATALOGCORE_APP_GALLERY_GALLERY_RECORDS_H_

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "app/folder.h"
#include "app/picture.h"

namespace catalogcore::app {

struct GalleryRecord {
  std::int64_t changed = 0;  // time of change of the file, in units of std::filesystem's clock
  std::uintmax_t size = 0;   // bytes of the file
  PictureFacts facts;        // width 0: unknown
  std::string thumbnail;     // name of thumbnail and preview (small_copies.h); empty: none
  bool preview = false;
};

using GalleryRecords = std::map<std::string, GalleryRecord>;  // by path

// Whether the name is 16 hexadecimal digits, as names of thumbnails are.
bool IsCopyName(std::string_view name);

// Reads the records of an earlier run. Makes an empty folder a gallery without records. Throws std::runtime_error if the
// folder holds other files and is not a gallery, or cannot be written.
GalleryRecords OpenRecords(const Folder& folder, const Readers& readers);

// Throws std::runtime_error.
void WriteRecords(const Folder& folder, const GalleryRecords& records, const Readers& readers);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_GALLERY_GALLERY_RECORDS_H_
