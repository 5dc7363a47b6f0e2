// The small copies of a gallery's pictures: thumbnails of all, previews of those that browsers cannot show.
//
// Invariant: a copy's name is the FNV-1a hash, 64 bits in 16 hexadecimal digits, of its picture's path, time of change
// and size. So a copy that is there is the right one, and never changes. (Among a million pictures the odds that any two
// share a name are 3 in 100 million.)
#ifndef CATALOGCORE_APP_GALLERY_SMALL_COPIES_H_
#define CATALOGCORE_APP_GALLERY_SMALL_COPIES_H_

#include <filesystem>
#include <set>
#include <string>

#include "app/gallery/picture_records.h"

namespace catalogcore::app {

class SmallCopies {
 public:
  explicit SmallCopies(std::filesystem::path folder) : folder_(std::move(folder)) {}

  // Takes copies that are not there (any more) out of the record. Returns whether it has all that the picture needs.
  bool Check(const std::string& path, PictureRecord& record) const;

  // Fills facts, thumbnail and preview of a record whose time and size are set, and makes the copies that are not there.
  // Returns whether the thumbnail was made. Throws PictureError: what was found until then stays;
  // std::runtime_error: the folder cannot be written. Any thread, one a picture.
  bool Make(const std::string& path, PictureRecord& record) const;

  // Removes every file but the copies of these names.
  void RemoveOthers(const std::set<std::string>& thumbnails, const std::set<std::string>& previews) const;

 private:
  std::filesystem::path folder_;
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_GALLERY_SMALL_COPIES_H_
