// The small copies of a gallery's pictures: thumbnails of all, previews of those that browsers cannot show.
//
// Invariant: a copy's name is the FNV-1a hash, 64 bits in 16 hexadecimal digits, of its picture's path, time of change
// and size. So a copy that is there is the right one, and never changes. (Among a million pictures the odds that any two
// share a name are 3 in 100 million.)
#ifndef CATALOGCORE_APP_GALLERY_SMALL_COPIES_H_
#define CATALOGCORE_APP_GALLERY_SMALL_COPIES_H_

#include <set>
#include <string>

#include "app/gallery/gallery_records.h"

namespace catalogcore::app {

class PicturePool;

class SmallCopies {
 public:
  // Makes the folders of the copies in the gallery's. `pictures` decodes; null: this process does. Throws
  // std::runtime_error.
  SmallCopies(const Folder& gallery, PicturePool* pictures)
      : thumbnails_(gallery.Inner("thumbs")), previews_(gallery.Inner("previews")), pictures_(pictures) {}

  // Takes copies that are not there (any more) out of the record, and those that are from whoever is not among the
  // picture's readers. Returns whether it has all that the picture needs.
  bool Check(const std::string& path, PictureRecord& record, const Readers& readers) const;

  // Fills facts, thumbnail and preview of a record whose time and size are set, and makes the copies that are not there.
  // Returns whether the thumbnail was made. Throws PictureError: what was found until then stays;
  // std::runtime_error: the folder cannot be written. Any thread, one a picture.
  bool Make(const std::string& path, PictureRecord& record, const Readers& readers) const;

  // Removes all copies but those of these names, and what interrupted runs left. Other files stay.
  void RemoveOthers(const std::set<std::string>& thumbnails, const std::set<std::string>& previews) const;

 private:
  bool MakeCopy(const std::string& picture, const Folder& folder, const std::string& name, int side,
                const Readers& readers) const;

  Folder thumbnails_;
  Folder previews_;
  PicturePool* pictures_;
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_GALLERY_SMALL_COPIES_H_
