// What is known of each picture of a gallery from one run to the next, so that no file is opened twice. Kept in
// catalogcore-gallery.json, which also tells a gallery from a folder of something else.
#ifndef CATALOGCORE_APP_GALLERY_GALLERY_RECORDS_H_
#define CATALOGCORE_APP_GALLERY_GALLERY_RECORDS_H_

#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "app/folder.h"
#include "app/picture.h"

namespace catalogcore::app {

struct PictureRecord {
  std::int64_t changed = 0;  // the file's time of change, in units of the file system's clock
  std::uintmax_t size = 0;   // bytes of the file
  PictureFacts facts;        // width 0: unknown
  std::string thumbnail;     // name of the thumbnail and of the preview, see small_copies.h; empty: there is none
  bool preview = false;
};

using PictureRecords = std::map<std::string, PictureRecord>;  // by path

// Whether it may be the name of a thumbnail: 16 hexadecimal digits.
bool IsCopyName(std::string_view name);

// Makes the folder a gallery, if it is not one, and returns what a former run left there. Throws std::runtime_error when
// it holds something and is no gallery, or cannot be written.
PictureRecords OpenRecords(const Folder& folder, const Readers& readers);

// Throws std::runtime_error.
void WriteRecords(const Folder& folder, const PictureRecords& records, const Readers& readers);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_GALLERY_GALLERY_RECORDS_H_
