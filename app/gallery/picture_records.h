// What is known of each picture of a gallery from one run to the next, so that no file is opened twice. Kept in
// catalogcore-gallery.json, which also tells a gallery from a folder of something else.
#ifndef CATALOGCORE_APP_GALLERY_PICTURE_RECORDS_H_
#define CATALOGCORE_APP_GALLERY_PICTURE_RECORDS_H_

#include <cstdint>
#include <filesystem>
#include <map>
#include <string>

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

// Makes the folder a gallery, if it is not one, and returns what a former run left there. Throws std::runtime_error when
// it holds something and is no gallery, or cannot be made or written.
PictureRecords OpenRecords(const std::filesystem::path& folder);

// Throws std::runtime_error.
void WriteRecords(const std::filesystem::path& folder, const PictureRecords& records);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_GALLERY_PICTURE_RECORDS_H_
