// The small copies of a gallery: a thumbnail of each picture, and a preview of each that browsers cannot show.
//
// Invariant: the name of a copy is the FNV-1a hash of its picture's path, time of change and size, 64 bits as 16 hexadecimal
// digits. An existing copy therefore is valid and never changes. (In a million pictures, two share a name with a
// probability of 3 in 100 million.)
#ifndef CATALOGCORE_APP_GALLERY_SMALL_COPIES_H_
#define CATALOGCORE_APP_GALLERY_SMALL_COPIES_H_

#include <set>
#include <string>

#include "app/gallery/gallery.h"
#include "app/gallery/gallery_records.h"

namespace catalogcore::app {

class SmallCopies {
 public:
  // Creates the folders of the copies. The functions of the request read the pictures. Throws std::runtime_error.
  SmallCopies(const Folder& gallery, const GalleryRequest& request)
      : thumbnails_(gallery.Inner("thumbs")), previews_(gallery.Inner("previews")), request_(request) {}

  // Removes missing copies from the record, and makes existing ones unreadable for others than the picture's readers.
  // Returns whether the record has every copy that the picture needs.
  bool Check(const std::string& path, GalleryRecord& record, const Readers& readers) const;

  // Fills the facts, thumbnail and preview of a record with time and size, and creates the missing copies. Returns whether
  // the thumbnail is new. Any thread, one a picture. Throws PictureError, with the facts read so far in the record, and
  // std::runtime_error if the folder cannot be written.
  bool Make(const std::string& path, GalleryRecord& record, const Readers& readers) const;

  // Removes all copies except those with these names, and the temporary files of interrupted runs. Keeps other files.
  void RemoveOthers(const std::set<std::string>& thumbnails, const std::set<std::string>& previews) const;

 private:
  bool MakeCopy(const std::string& picture, const Folder& folder, const std::string& name, int side,
                const Readers& readers) const;

  Folder thumbnails_;
  Folder previews_;
  const GalleryRequest& request_;
};

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_GALLERY_SMALL_COPIES_H_
